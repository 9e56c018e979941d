// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What an update removes depends on the shape that a member had and on the one that it gets.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/any_store.h"
#include "store/pending.h"
#include "store/pruning.h"
#include "store/resource_writer.h"
#include "store/store_state.h"
#include "store/tree_removal.h"

namespace ostrafel {

namespace {

class UpdateShapes : public AnyStoreTest {
 protected:
  // The keys that an update of /r with this document queues for unlinking.
  std::vector<std::string> Unlinked(const std::string& json) {
    EXPECT_EQ(WriteResource(server(), "/r", Parse(json).get()), 1U);
    return Store->RemovalBatch.keys;
  }
};

using Keys = std::vector<std::string>;

class StaleMembers : public AnyStoreTest {};
class PlainLists : public AnyStoreTest {};

TEST_F(UpdateShapes, AScalarTakesTheObjectBeforeItAway) {
  PutHash("&&/r/A", {{"x", "1"}});
  PutHash("&&/r/A/B", {{"y", "1"}});
  EXPECT_EQ(Unlinked(R"({"A": 1})"), (Keys{"&&/r/A", "&&/r/A/B"}));
}

TEST_F(UpdateShapes, AnObjectIsMergedIntoTheObjectBeforeIt) {
  PutHash("&&/r/A", {{"x", "1"}});
  PutHash("&&/r/A/B", {{"y", "1"}});
  EXPECT_EQ(Unlinked(R"({"A": {"x": 2}})"), Keys{});
}

TEST_F(UpdateShapes, AnObjectTakesTheArrayBeforeItAway) {
  PutList("&&/r/A", {"1"});
  EXPECT_EQ(Unlinked(R"({"A": {"x": 2}})"), Keys{"&&/r/A"});
}

TEST_F(UpdateShapes, AnArrayReplacesTheArrayBeforeIt) {
  PutList("&&/r/A", {"1"});
  EXPECT_EQ(Unlinked(R"({"A": [1]})"), Keys{"&&/r/A"});
}

TEST_F(UpdateShapes, AnObjectInAnArrayIsPrunedAsAnElement) {
  PutList("&&/r/A/0", {"1"});
  EXPECT_EQ(Unlinked(R"({"A": [{"x": 2}]})"), Keys{"&&/r/A/0"});
  EXPECT_FALSE(Store->RemovalBatch.list_values["&&/r/A"].empty());
}

// Only the whole part before a slash counts, the empty one between two slashes included.
TEST_F(UpdateShapes, AMarkThatEndsWithASlashCountsForTheKeysBelowIt) {
  Store->PrunedPrefixes.insert("a/");
  EXPECT_TRUE(IsUnderPrunedPrefix("a//b/*"));
  EXPECT_FALSE(IsUnderPrunedPrefix("a/b/*"));
}

TEST_F(UpdateShapes, KeepWhatIsQueuedWhenTheLinksCannotBeRead) {
  PutText("/r");
  EXPECT_EQ(PruneProperty(server(), "/r", "A", "", ParentKind::kHash, StoredNone), 0U);
  EXPECT_EQ(PendingRemovalsText(),
            "HDEL | /r | A\n"
            "HDEL | /r | &&Array A &&/r/A\n"
            "HDEL | /r | &&ObjectRef A &&/r/A\n"
            "HDEL | /r | &&Object A &&/r/A\n");
}

TEST_F(StaleMembers, HoldAnotherTypeThanExpectedOrAList) {
  const struct {
    KeyType stored;
    ExpectedKind expected;
    bool is_stale;
  } cases[] = {
      {KeyType::kNone, StoredHash, false}, {KeyType::kNone, StoredList, false},
      {KeyType::kNone, StoredNone, false}, {KeyType::kHash, StoredHash, false},
      {KeyType::kHash, StoredList, true},  {KeyType::kHash, StoredNone, true},
      {KeyType::kList, StoredHash, true},  {KeyType::kList, StoredList, true},
      {KeyType::kList, StoredNone, true},  {KeyType::kOther, StoredHash, true},
      {KeyType::kOther, StoredList, true}, {KeyType::kOther, StoredNone, true},
  };
  for (const auto& c : cases) {
    ASSERT_EQ(RemoveResourceTree(server(), "k"), 1U);
    Store.emplace();
    if (c.stored == KeyType::kHash) PutHash("k", {{"f", "v"}});
    if (c.stored == KeyType::kList) PutList("k", {"v"});
    if (c.stored == KeyType::kOther) PutText("k");
    EXPECT_EQ(PruneStaleKey(server(), "k", c.expected), 1U);
    EXPECT_EQ(PendingRemovalsText(), c.is_stale ? "UNLINK | k\n" : "")
        << static_cast<int>(c.stored) << " as " << c.expected;
  }
}

TEST_F(StaleMembers, ThatHoldAMarkerWithNothingAfterItArePlainLists) {
  PutList("&&/r/A", {"&&Object "});
  PutHash("&&/r/A/0", {{"x", "1"}});
  EXPECT_EQ(PruneStaleKey(server(), "&&/r/A", StoredNone), 1U);
  EXPECT_EQ(PendingRemovalsText(), "UNLINK | &&/r/A\n");
}

TEST_F(StaleMembers, WithGlobCharactersMatchAsGlobs) {
  PutHash("&&/r/A*", {{"f", "v"}});
  PutHash("&&/r/AB/x", {{"f", "v"}});
  EXPECT_EQ(PruneStaleKey(server(), "&&/r/A*", StoredNone), 1U);
  EXPECT_EQ(PendingRemovalsText(), "UNLINK | &&/r/A*\nUNLINK | &&/r/AB/x\n");
}

TEST_F(PlainLists, AreToldByTheirFirstElement) {
  const struct {
    const char* first;
    unsigned is_plain;
  } cases[] = {
      {"1", 1U},
      {"\"text\"", 1U},
      {"&&Array ", 1U},
      {"&&Array x", 0U},
      {"&&Object ", 1U},
      {"&&Object &&/r/A/0", 0U},
      {"&&ObjectRef ", 1U},
      {"&&ObjectRef /x", 0U},
      {"&&ObjectRefs /x", 1U},
      {"&&array x", 1U},
      {"", 1U},
  };
  for (const auto& c : cases) {
    PutList("l", {c.first, "&&Object x"});
    EXPECT_EQ(IsPlainList(server(), "l"), c.is_plain) << c.first;
  }
}

TEST_F(PlainLists, AreNeitherMissingNorOfAnotherType) {
  EXPECT_EQ(IsPlainList(server(), "none"), 0U);
  PutHash("h", {{"f", "v"}});
  EXPECT_EQ(IsPlainList(server(), "h"), 0U);
}

}  // namespace

}  // namespace ostrafel
