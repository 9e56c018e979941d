// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/server.h"

#include <initializer_list>
#include <map>
#include <set>
#include <string>

#include "store/any_store.h"
#include "store/pending.h"
#include "store/queue.h"
#include "store/store_state.h"
#include "store/tree_removal.h"

namespace ostrafel {

namespace {

class Flushes : public AnyStoreTest {};

class Searches : public AnyStoreTest {
 protected:
  static auto TakeInto(std::set<std::string>* found) {
    return [found](const std::string& name) {
      found->insert(name);
      return 1U;
    };
  }

  std::set<std::string> FoundKeys(const std::string& pattern) {
    std::set<std::string> found;
    EXPECT_EQ(FindKeys(server(), pattern, TakeInto(&found)), 1U);
    return found;
  }
};

class RemovedTrees : public AnyStoreTest {
 protected:
  void Fill(const std::initializer_list<const char*>& keys) {
    for (const char* key : keys) PutList(key, {"v"});
  }
};

TEST_F(Flushes, OfAFieldThatIsThereReplaceItsValue) {
  PutHash("k", {{"f", "old"}});
  ASSERT_EQ(PutHashField(server(), "k", {"f"}, "new"), 1U);
  EXPECT_EQ(FlushHashBatch(server()), 1U);
  EXPECT_EQ(Dump(), "hash | k | f | new\n");
}

TEST_F(Flushes, OfFieldsReportListsOnceAndStoreTheRest) {
  PutList("b", {"x"});
  PutList("c", {"x"});
  for (const char* key : {"a", "b", "c", "d"}) {
    ASSERT_EQ(PutHashField(server(), key, {"f"}, "1"), 1U);
  }
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushHashBatch(server()), 0U); }), HashFlushFailed);
  EXPECT_TRUE(Store->HashBatch.empty());
  EXPECT_EQ(Dump(),
            "hash | a | f | 1\n"
            "list | b | x\n"
            "list | c | x\n"
            "hash | d | f | 1\n");
  EXPECT_EQ(FlushHashBatch(server()), 1U);
}

TEST_F(Flushes, OfElementsReportHashesOnceAndStoreTheRest) {
  PutHash("b", {{"f", "v"}});
  PutList("c", {"0"});
  for (const char* key : {"a", "b", "b", "c"}) ASSERT_EQ(PutListItem(server(), key, {"1"}), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushListBatch(server()), 0U); }), ListFlushFailed);
  EXPECT_TRUE(Store->ListBatch.empty());
  // Every reply was read: the next command gets its own.
  ASSERT_EQ(PutListItem(server(), "d", {"1"}), 1U);
  EXPECT_EQ(FlushListBatch(server()), 1U);
  EXPECT_EQ(Dump(),
            "list | a | 1\n"
            "hash | b | f | v\n"
            "list | c | 0\n"
            "list | c | 1\n"
            "list | d | 1\n");
}

TEST_F(Flushes, OfRemovalsTakeWhatIsNotThereAsGood) {
  PutHash("h", {{"f", "1"}, {"g", "2"}});
  PutHash("emptied hash", {{"f", "1"}});
  PutList("l", {"a", "b", "a", "c", "a"});
  PutList("emptied list", {"a", "a"});
  PutText("k");
  Store->RemovalBatch.keys = {"k", "none"};
  Store->RemovalBatch.list_values["l"] = {"a", "none"};
  Store->RemovalBatch.list_values["emptied list"] = {"a"};
  Store->RemovalBatch.hash_fields["h"] = {"f", "none"};
  Store->RemovalBatch.hash_fields["emptied hash"] = {"f"};
  Store->RemovalBatch.hash_fields["none"] = {"f"};
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushRemovalBatch(server()), 1U); }), "");
  EXPECT_EQ(Dump(),
            "hash | h | g | 2\n"
            "list | l | b\n"
            "list | l | c\n");
  for (const char* key : {"k", "emptied hash", "emptied list"}) {
    EXPECT_EQ(AskType(server(), key), KeyType::kNone) << key;
  }
}

TEST_F(Flushes, OfRemovalsReportOtherTypesOnceAndEmptyTheBatch) {
  PutText("s");
  Store->RemovalBatch.keys = {"k"};
  Store->RemovalBatch.list_values["s"] = {"a"};
  Store->RemovalBatch.hash_fields["s"] = {"f"};
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushRemovalBatch(server()), 0U); }), RemovalFlushFailed);
  EXPECT_EQ(PendingRemovalsText(), "");
  EXPECT_EQ(FlushRemovalBatch(server()), 1U);
}

TEST_F(Flushes, OfRemovalsThatFailKeepElementsWaiting) {
  PutText("other");
  Store->RemovalBatch.list_values["other"].emplace_back("v");
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(PutListItem(server(), "k", {"v"}), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(PutListItem(server(), "k", {"w"}), 0U); }), RemovalFlushFailed);
  EXPECT_EQ(Store->ListBatchCount, 2000U);
  EXPECT_EQ(PendingValues().at("k").size(), 2000U);
}

TEST_F(Searches, OfALargeStoreFindEveryKey) {
  for (int i = 0; i < 3000; ++i) {
    PutText("/p/" + std::to_string(i));
    PutText("/q/" + std::to_string(i));
  }
  const auto unlink = [&](const std::string& key) {
    return QueueRemoval(server(), key, {}, RemoveKey);
  };
  EXPECT_EQ(FindKeys(server(), "/p/*", unlink), 1U);
  // The first 2000 went when the batch was full.
  EXPECT_GE(Store->RemovalBatch.keys.size(), 1000U);
  EXPECT_EQ(FlushRemovalBatch(server()), 1U);
  EXPECT_EQ(FoundKeys("/p/*").size(), 0U);
  EXPECT_EQ(FoundKeys("*").size(), 3000U);
}

TEST_F(Searches, OfALargeHashFindEveryField) {
  std::map<std::string, std::string> fields;
  for (int i = 0; i < 1500; ++i) {
    fields["&&ObjectRef A /" + std::to_string(i)] = "";
    fields["&&ObjectRef B /" + std::to_string(i)] = "";
  }
  PutHash("h", fields);
  std::set<std::string> found;
  EXPECT_EQ(FindFields(server(), "h", "&&ObjectRef A *", TakeInto(&found)), 1U);
  EXPECT_EQ(found.size(), 1500U);
}

TEST_F(Searches, OfAMissingHashFindNothingButOfAnotherTypeFail) {
  PutList("l", {"x"});
  std::set<std::string> found;
  EXPECT_EQ(FindFields(server(), "none", "*", TakeInto(&found)), 1U);
  EXPECT_EQ(FindFields(server(), "l", "*", TakeInto(&found)), 0U);
  EXPECT_TRUE(found.empty());
}

TEST_F(RemovedTrees, LeaveTheirNeighboursAndTheTwinOfTheUri) {
  Fill({"/redfish/v1/Systems", "/redfish/v1/Systems/1", "/redfish/v1/Systems/1/Bios",
        "&&/redfish/v1/Systems/1/Status", "/redfish/v1/SystemsX", "&&/redfish/v1/Systems",
        "&&/redfish/v1/SystemsX/A", "/redfish/v1"});
  EXPECT_EQ(RemoveResourceTree(server(), "/redfish/v1/Systems"), 1U);
  EXPECT_EQ(Dump(),
            "list | &&/redfish/v1/Systems | v\n"
            "list | &&/redfish/v1/SystemsX/A | v\n"
            "list | /redfish/v1 | v\n"
            "list | /redfish/v1/SystemsX | v\n");
}

TEST_F(RemovedTrees, AreAllThatAGlobInTheUriMatches) {
  Fill({"/r1", "/r2", "/r1/A", "&&/r2/A", "/q1"});
  EXPECT_EQ(RemoveResourceTree(server(), "/r?"), 1U);
  EXPECT_EQ(Dump(), "list | /q1 | v\n");
  Fill({"/q1", "/x", "/q2/A"});
  EXPECT_EQ(RemoveResourceTree(server(), "/q*"), 1U);
  EXPECT_EQ(Dump(), "list | /x | v\n");
}

}  // namespace

}  // namespace ostrafel
