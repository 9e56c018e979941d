// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/places.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "diff/comparison.h"
#include "diff/diff_fixture.h"
#include "diff/processor_time.h"

namespace ostrafel {

namespace {

class PlacesTest : public DiffTest {
 protected:
  static Hash& HashAt(Server* server, const std::string& key) {
    return std::get<Hash>(server->keys.at(key));
  }
  static List& ListAt(Server* server, const std::string& key) {
    return std::get<List>(server->keys.at(key));
  }
};

TEST_F(PlacesTest, AreTheLinesOfMembersAndElements) {
  Write("index.json",
        "{\n\"Name\": 1,\n\"Status\": {\n \"State\":\n \"on\"},\n\"Fans\": [1,\n2,\n[3]]}");
  Server stored = Loaded();
  HashAt(&stored, "/r")["Name"] = "2";
  HashAt(&stored, "&&/r/Status").clear();
  HashAt(&stored, "&&/r/Status")["Stat"] = "x";
  ListAt(&stored, "&&/r/Fans").erase(ListAt(&stored, "&&/r/Fans").begin() + 1);
  ListAt(&stored, "&&/r/Fans/2")[0] = "4";
  EXPECT_EQ(Places(stored), (Lines{"missing &&/r/Fans 1 index.json:7 /Fans/1",
                                   "changed &&/r/Fans/2 0 index.json:8 /Fans/2/0",
                                   "extra &&/r/Status Stat index.json /Status/Stat",
                                   "missing &&/r/Status State index.json:4 /Status/State",
                                   "changed /r Name index.json:2 /Name"}));
}

TEST_F(PlacesTest, OfWholeKeysAreTheirObjectsAndArrays) {
  Write("index.json",
        "{\"A\": {\n\"x\": 1},\n\"L\": [1],\n\"Own\": {\"@odata.id\": \"/o\", \"y\": 2}}");
  Server stored = Loaded();
  stored.keys["&&/r/A"] = List{"1"};
  stored.keys["/r/more"] = Hash{{"x", "1"}};
  stored.keys.erase("&&/r/L");
  stored.keys.erase("/o");
  EXPECT_EQ(Places(stored),
            (Lines{"changed &&/r/A index.json:1 /A", "missing &&/r/L index.json:3 /L",
                   "missing /o index.json:4 /Own", "extra /r/more -"}));
  stored.keys.erase("/r");
  EXPECT_EQ(Places(stored)[3], "missing /r index.json:1 ");
}

TEST_F(PlacesTest, OfWhatReplacesAMemberIsTheMember) {
  Write("index.json",
        "{\"A\": 1,\n\"B\": {\"x\": 1},\n\"C\": [1],\n\"D\": {\"@odata.id\": \"/d\"}}");
  Server stored = Loaded();
  HashAt(&stored, "/r") = {
      {"&&Object A &&/r/A", ""}, {"&&ObjectRef B /b", ""}, {"C", "1"}, {"&&ObjectRef D /e", ""}};
  stored.keys.erase("&&/r/B");
  stored.keys.erase("&&/r/C");
  EXPECT_EQ(Places(stored),
            (Lines{"missing &&/r/B index.json:2 /B", "missing &&/r/C index.json:3 /C",
                   "missing /r &&Array C &&/r/C index.json:3 /C",
                   "extra /r &&Object A &&/r/A index.json:1 /A",
                   "missing /r &&Object B &&/r/B index.json:2 /B",
                   "extra /r &&ObjectRef B /b index.json:2 /B",
                   "missing /r &&ObjectRef D /d index.json:4 /D",
                   "extra /r &&ObjectRef D /e index.json:4 /D", "missing /r A index.json:1 /A",
                   "extra /r C index.json:3 /C"}));
}

TEST_F(PlacesTest, OfExtraRecordsAreWhereTheyWouldStand) {
  Write("index.json", "{\"A\": {},\n\"L\": [1,\n2]}");
  Server stored = Loaded();
  HashAt(&stored, "/r")["a/b~"] = "1";
  HashAt(&stored, "/r")["&&Array My List &&/r/My List"] = "";
  stored.keys["&&/r/A"] = Hash{{"x", "1"}};
  ListAt(&stored, "&&/r/L") = {"0", "1", "2", "3"};
  EXPECT_EQ(Places(stored),
            (Lines{"extra &&/r/A index.json:1 /A", "extra &&/r/L 0 index.json:2 /L/0",
                   "extra &&/r/L 3 index.json /L/3",
                   "extra /r &&Array My List &&/r/My List index.json /My List",
                   "extra /r a/b~ index.json /a~1b~0"}));
}

TEST_F(PlacesTest, HaveEscapedPointers) {
  Write("index.json", R"({"a/b": {"~": [[1], {"~1/": true}]}})");
  const Lines places = Places({});
  EXPECT_EQ(
      places,
      (Lines{"missing &&/r/a/b index.json:1 /a~1b", "missing &&/r/a/b/~ index.json:1 /a~1b/~0",
             "missing &&/r/a/b/~/0 index.json:1 /a~1b/~0/0",
             "missing &&/r/a/b/~/1 index.json:1 /a~1b/~0/1", "missing /r index.json:1 "}));
  Server stored = Loaded();
  HashAt(&stored, "&&/r/a/b/~/1")["~1/"] = "false";
  EXPECT_EQ(Places(stored), (Lines{"changed &&/r/a/b/~/1 ~1/ index.json:1 /a~1b/~0/1/~01~1"}));
}

TEST_F(PlacesTest, AreFoundOfReservedMembers) {
  Write("index.json", "{\"&&ETag\":\n\"a\\\"b\",\n\"&&Privileges\": {\"&&ETag\": \"x\"}}");
  Server stored = Loaded();
  HashAt(&stored, "/r")["&&ETag"] = "other";
  HashAt(&stored, "&&/r/&&Privileges")["&&ETag"] = "other";
  EXPECT_EQ(Places(stored),
            (Lines{"changed &&/r/&&Privileges &&ETag index.json:3 /&&Privileges/&&ETag",
                   "changed /r &&ETag index.json:1 /&&ETag"}));
}

TEST_F(PlacesTest, AreInTheIncludedFileButForItsName) {
  Write("index.json", "{\"Name\": 1,\n\"&&File\":\n\"x.json\"}");
  Include("x.json", "{\n\"Name\": 2,\n\"&&File\": 3, \"A\": [1]}");
  Server stored = Loaded();
  for (auto& [field, value] : HashAt(&stored, "/r")) {
    if (field != "&&Array A &&/r/A") value += "0";
  }
  HashAt(&stored, "/r")["B"] = "1";
  ListAt(&stored, "&&/r/A")[0] = "2";
  EXPECT_EQ(Places(stored),
            (Lines{"changed &&/r/A 0 www/x.json:3 /A/0", "changed /r &&File index.json:2 /&&File",
                   "extra /r B www/x.json /B", "changed /r Name www/x.json:2 /Name"}));
}

TEST_F(PlacesTest, AreInTheFileItselfWhereNothingIsIncluded) {
  Write("index.json", "{\"Name\": 1,\n\"&&File\":\n\"x.xml\"}");
  Include("x.xml", "<x/>");
  EXPECT_EQ(Places({}), (Lines{"missing /r index.json:1 "}));
  Server stored = Loaded();
  HashAt(&stored, "/r") = {{"&&Object &&File &&/r/&&File", ""}};
  EXPECT_EQ(Places(stored), (Lines{"missing /r &&File index.json:2 /&&File",
                                   "extra /r &&Object &&File &&/r/&&File index.json:2 /&&File",
                                   "missing /r Name index.json:1 /Name"}));
}

TEST_F(PlacesTest, AreInTheFirstOfTwoFilesWithOneKey) {
  Write("A/index.json", "{\"@odata.id\": \"/x\",\n\"Name\": 1, \"O\": {\"a\": 1}}");
  Write("B/index.json", "{\"@odata.id\": \"/x\",\n\n\"Name\": 1, \"O\": {\"a\": 1}, \"P\": 2}");
  const Server wanted = Loaded();
  Server stored = wanted;
  HashAt(&stored, "/x")["Name"] = "0";
  HashAt(&stored, "/x")["P"] = "0";
  HashAt(&stored, "&&/x/O")["a"] = "0";
  const Lines places = Places(stored);
  // Which is the first is for the walk to say.
  const bool is_a =
      HashAt(&stored, "/x").count("P") != 0 && std::get<Hash>(wanted.keys.at("/x")).count("P") == 0;
  EXPECT_EQ(
      places,
      is_a ? (Lines{"changed &&/x/O a A/index.json:2 /O/a", "changed /x Name A/index.json:2 /Name",
                    "extra /x P A/index.json /P"})
           : (Lines{"changed &&/x/O a B/index.json:3 /O/a", "changed /x Name B/index.json:3 /Name",
                    "changed /x P B/index.json:3 /P"}));
}

TEST_F(PlacesTest, AreInTheFirstOfTwoObjectsWithOneKey) {
  Write("index.json",
        "{\"A\": {\"@odata.id\": \"/x\", \"a\": 1},\n\"B\": {\"@odata.id\": \"/x\", \"b\": 1}}");
  Server stored = Loaded();
  HashAt(&stored, "/x") = {{"b", "1"}};
  // jansson keeps the order of members.
  EXPECT_EQ(Places(stored),
            (Lines{"missing /x @odata.id index.json:1 /A/@odata.id",
                   "missing /x a index.json:1 /A/a", "extra /x b index.json /A/b"}));
}

TEST_F(PlacesTest, AreInNoObjectOfAFileThatIsNotWritten) {
  // The second file for "/a" is left out, and "/x" in it with it, though nothing of "/a" differs.
  Write("A/B/index.json", R"({"@odata.id": "/a", "Name": 1})");
  Write("A/index.json", R"({"@odata.id": "/a", "In": {"@odata.id": "/x", "Old": 1}})");
  Write("index.json", "{\"@odata.id\": \"/x\",\n\"New\": 1}");
  Server stored = Loaded();
  ASSERT_EQ(HashAt(&stored, "/a").count("Name"), 1U) << "a walk begins with the deepest folder";
  HashAt(&stored, "/x")["New"] = "2";
  EXPECT_EQ(Places(stored), (Lines{"changed /x New index.json:2 /New"}));
}

TEST_F(PlacesTest, AreWhereTheValueThatStaysStands) {
  // Both objects and both arrays lie at one key.
  Write("index.json",
        "{\"A/B\": {\"x\": 1},\n\"A\": {\"B\": {\"x\": 2},\n\"L\": [1]},\n\"A/L\": [2]}");
  Server stored = Loaded();
  HashAt(&stored, "&&/r/A/B")["x"] = "3";
  ListAt(&stored, "&&/r/A/L") = {"0", "0"};
  EXPECT_EQ(Places(stored), (Lines{"changed &&/r/A/B x index.json:2 /A/B/x",
                                   "changed &&/r/A/L 0 index.json:3 /A/L/0",
                                   "changed &&/r/A/L 1 index.json:4 /A~1L/0"}));
}

TEST_F(PlacesTest, AreFoundForKeysElsewhere) {
  Write("Deep/index.json",
        "{\"Name\": 1, \"In\": [{\"@odata.id\": \"/far/away\",\n\"x\": {\"y\": 1}}]}");
  EXPECT_EQ(Places({}), (Lines{"missing &&/far/away/x Deep/index.json:2 /In/0/x",
                               "missing &&/r/Deep/In Deep/index.json:1 /In",
                               "missing /far/away Deep/index.json:1 /In/0",
                               "missing /r/Deep Deep/index.json:1 "}));
}

TEST_F(PlacesTest, AreInTheOnlyFileWhereTheTreeIsOne) {
  directory.Write("one.json", R"({"Name": 1})");
  path = "one.json";
  EXPECT_EQ(Places({}), (Lines{"missing /r one.json:1 "}));
}

TEST_F(PlacesTest, AreThoseOfTheLastOfEqualNames) {
  Write("index.json", "{\"A\": 1,\n\"A\": 2}");
  Server stored = Loaded();
  HashAt(&stored, "/r")["A"] = "1";
  EXPECT_EQ(Places(stored), (Lines{"changed /r A index.json:2 /A"}));
}

TEST_F(PlacesTest, ReadsNothingWhereNothingDiffers) {
  Write("index.json", R"({"A": 1})");
  EXPECT_EQ(Places(Loaded()), Lines{});
}

class ManyPlacesTest : public PlacesTest {
 protected:
  // Finds the places of so many fields and as many elements, which all differ. Returns the
  // processor's time.
  double Find(std::size_t count) {
    std::string members;
    std::string elements;
    Hash hash;
    List list;
    for (std::size_t i = 0; i < count; ++i) {
      const std::string number = std::to_string(i);
      members += (i == 0 ? "\"" : ",\"") + number + "\": 1";
      elements += (i == 0 ? "1" : ",1");
      hash[number] = "0";
      list.emplace_back("0");
    }
    Write("index.json", "{\"L\": [" + elements + "],\n\"H\": {" + members + "}}");
    Server stored = Loaded();
    stored.keys["&&/r/H"] = hash;
    stored.keys["&&/r/L"] = list;
    Differences differences;
    const double time = ProcessorTimeOf([&] { differences = Compare(stored); });
    EXPECT_EQ(differences.size(), 2 * count);
    EXPECT_TRUE(
        std::all_of(differences.begin(), differences.end(), [](const Difference& difference) {
          return difference.place && difference.place->position.line != 0;
        }));
    return time;
  }
};

TEST_F(ManyPlacesTest, AreFoundInATimeThatGrowsWithWhatDiffers) {
  const double time_of_few = Find(5000);
  EXPECT_LT(Find(50000), kLinear * time_of_few);
}

}  // namespace

}  // namespace ostrafel
