// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What an update makes of a store that an earlier run filled.
#include <algorithm>
#include <map>
#include <string>

#include "system/system_fixture.h"

namespace {

class Update : public SystemTest {
 protected:
  // Pattern -> how many searches for it the last run began.
  std::map<std::string, int> Scans() const {
    std::map<std::string, int> scans;
    for (const model::Command& command : model::CommandsOf(recording.flights)) {
      if (command[0] == "SCAN" && command[1] == "0") ++scans[command[3]];
    }
    return scans;
  }
};

TEST_F(Update, MergesMembersAndTurnsEachShapeIntoEachOther) {
  const std::string object = "hash | &&/r/A | y | 1\nhash | /r | &&Object A &&/r/A | \n";
  const std::string array = "list | &&/r/A | 4\nhash | /r | &&Array A &&/r/A | \n";
  const std::string array_of_objects =
      "list | &&/r/A | &&Object &&/r/A/0\n"
      "hash | &&/r/A/0 | x | 2\n"
      "hash | /r | &&Array A &&/r/A | \n";
  const std::string link = "hash | /r | &&ObjectRef A /z | \n";
  const std::string scalar = "hash | /r | A | \"s\"\n";
  const struct {
    const char* first;
    const char* second;
    std::string dump;
  } cases[] = {
      {R"({"A": 1, "B": 2, "O": {"x": 1, "y": {"z": 1}}})", R"({"B": 3, "C": 4, "O": {"w": 5}})",
       "hash | &&/r/O | &&Object y &&/r/O/y | \n"
       "hash | &&/r/O | w | 5\n"
       "hash | &&/r/O | x | 1\n"
       "hash | &&/r/O/y | z | 1\n"
       "hash | /r | &&Object O &&/r/O | \n"
       "hash | /r | A | 1\n"
       "hash | /r | B | 3\n"
       "hash | /r | C | 4\n"},
      {R"({"A": 1})", R"({"A": {"y": 1}})", object},
      {R"({"A": 1})", R"({"A": [4]})", array},
      {R"({"A": 1})", R"({"A": {"@odata.id": "/z"}})", link},
      {R"({"A": {"x": 1, "y": {"z": [1, {"w": 2}]}}})", R"({"A": "s"})", scalar},
      {R"({"A": {"x": 1, "y": {"z": 1}}})", R"({"A": [{"x": 2}]})", array_of_objects},
      {R"({"A": {"x": 1, "y": {"z": 1}}})", R"({"A": {"@odata.id": "/z"}})", link},
      {R"({"A": [{"x": 1}, [2], 3]})", R"({"A": "s"})", scalar},
      {R"({"A": [{"x": 1}, [2], 3]})", R"({"A": {"y": 1}})", object},
      {R"({"A": [{"x": 1}, {"y": 2}, {"z": 3}]})", R"({"A": [{"x": 2}]})", array_of_objects},
      {R"({"A": [{"@odata.id": "/x"}, {"@odata.id": "/y"}]})", R"({"A": [4]})", array},
      {R"({"A": {"@odata.id": "/x"}})", R"({"A": {"@odata.id": "/z"}})", link},
      {R"({"A": {"@odata.id": "/x"}})", R"({"A": {"y": 1}})", object},
      // A link of a member takes those of longer names, after a space, away.
      {R"({"A": {"@odata.id": "/x"}, "A B": {"@odata.id": "/y"}})", R"({"A": {"@odata.id": "/z"}})",
       link},
      // What is stored under the id of an inline object belongs to that id, not to the member.
      {R"({"A": {"@odata.id": "/x", "y": 1}})", R"({"A": "s"})",
       "hash | /r | &&Object A /x | \n"
       "hash | /r | A | \"s\"\n"
       "hash | /x | @odata.id | \"/x\"\n"
       "hash | /x | y | 1\n"},
      // The last: what it sends is told below.
      {R"({"A": [1, 2, 3]})", R"({"A": [4]})", array},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.first) + " to " + c.second);
    (void)store.Run("FLUSHALL");
    LoadDocument("create", c.first);
    LoadDocument("update", c.second);
    EXPECT_EQ(store.Dump(), c.dump);
  }
  EXPECT_EQ(Sent(),
            "TYPE | &&/r/A\n--\n"
            "LINDEX | &&/r/A | 0\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n--\n"
            "UNLINK | &&/r/A\n"
            "HDEL | /r | A\n"
            "HDEL | /r | &&Array A &&/r/A\n"
            "HDEL | /r | &&ObjectRef A &&/r/A\n"
            "HDEL | /r | &&Object A &&/r/A\n--\n"
            "HSET | /r | &&Array A &&/r/A | \n--\n"
            "RPUSH | &&/r/A | 4\n")
      << "an array that begins with a scalar is not scanned below";
}

TEST_F(Update, FailsToTurnAnArrayIntoAnObjectOfObjects) {
  // The links of the nested object are looked for in the old list, which still is there.
  LoadDocument("create", R"({"A": [1]})");
  const std::string file = tree.Write("a.json", R"({"A": {"x": 1, "y": {"z": 2}}})");
  ExpectFailure({"update", file, "/r"}, ">>> Error occurs while parsing file " + file + "\n");
  EXPECT_EQ(store.Dump(), "list | &&/r/A | 1\nhash | /r | &&Array A &&/r/A | \n");
}

TEST_F(Update, OfAnUnchangedResourceChangesNothing) {
  const std::string json = R"({
      "@odata.id": "/c", "Name": "One", "Power": 1.5,
      "Status": {"State": "on", "Deep": {"x": [1, [2], {"y": 3}]}},
      "Links": {"By": [{"@odata.id": "/m"}], "One": {"@odata.id": "/o"}},
      "Inline": {"@odata.id": "/c/i", "a": 1, "b": {"c": 2}},
      "&&ETag": "e", "Empty": {}, "None": []})";
  LoadDocument("create", json);
  const std::string before = store.Dump();
  Load({"update", tree.path("a.json"), "/r"});
  EXPECT_EQ(store.Dump(), before);
}

// STATUS 0 DOES NOT MEAN: A number equals the index of an element after it
TEST_F(Update, EqualNumbersThatAFullBatchPushedAreRemovedAgain) {
  // The array's own flush pushes its first 2000 values; the removal of elements equal to the index
  // of a later object then takes the equal number away.
  std::string numbers;
  for (int i = 0; i < 2001; ++i) numbers += std::to_string(i + 2000) + ", ";
  const std::string file = tree.Write("a.json", R"({"A": [)" + numbers + R"({"x": 1}]})");
  Load({"update", file, "/r"});
  const model::Store contents = store.Contents();
  const auto& list = std::get<model::List>(contents.at("&&/r/A").value);
  EXPECT_EQ(list.size(), 2001U);  // 2001 numbers less "2001", and the object's record
  EXPECT_EQ(std::count(list.begin(), list.end(), "2001"), 0);
  EXPECT_EQ(list.back(), "&&Object &&/r/A/2001");
  EXPECT_EQ(Shown("redis-cli llen KEY", "&&/r/A"), "2001\n");
}

// Five hundred members, of two resources, lead to lists of records in one subtree, all of them
// stale.
TEST_F(Update, NoSubtreeIsScannedTwiceHoweverManyMembersLeadIntoIt) {
  const auto put_stale_list = [&](const std::string& key) {
    (void)store.Run(model::Command{"RPUSH", key, "&&Object " + key + "/0"});
    (void)store.Run(model::Command{"HSET", key + "/0", "x", "1"});
  };
  const auto member = [](const std::string& name, const std::string& id) {
    return '"' + name + R"(": {"@odata.id": ")" + id + R"(", "x": 2})";
  };
  put_stale_list("/s");
  std::string members = member("Top", "/s");
  for (int i = 0; i < 250; ++i) {
    const std::string id = "/s/" + std::to_string(i);
    put_stale_list(id);
    members += ", " + member("M" + std::to_string(i), id);
  }
  (void)tree.Write("index.json", "{" + members + "}");
  (void)tree.Write("Other/index.json", "{" + members + "}");
  Load({"update", tree.path(), "/r", "index.json"});

  EXPECT_EQ(Scans(), (std::map<std::string, int>{{"/s/*", 1}, {"&&/s/*", 1}}));
}

// Two resources whose parts lie under the same keys. The list of the first is removed, and stored
// again by a full batch, before the other finds it.
TEST_F(Update, ASubtreeThatIsStoredAgainIsNotScannedAgain) {
  std::string members = R"("A": [{"@odata.id": "/x"})";
  for (int i = 0; i < 2500; ++i) members += ", 1";
  const std::string one = R"({"@odata.id": "/r", )" + members + "]}";
  Load({"create", tree.Write("index.json", one), "/r"});
  (void)tree.Write("Other/index.json", R"({"@odata.id": "/r/", )" + members + "]}");
  Load({"update", tree.path(), "/r", "index.json"});

  EXPECT_EQ(Scans(), (std::map<std::string, int>{{"&&/r/A/*", 1}}));
  int removals = 0;
  for (const model::Command& command : model::CommandsOf(recording.flights)) {
    if (command == model::Command{"UNLINK", "&&/r/A"}) ++removals;
  }
  EXPECT_EQ(removals, 2) << "both found the list";
}

}  // namespace
