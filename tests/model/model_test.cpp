// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>

#include "model/layout.h"
#include "model/model_fixture.h"

namespace model {
namespace {

TEST_F(ModelTest, TheChassisIsLaidOutInHashesAndLists) {
  const Outcome outcome = Create("/redfish/v1/Chassis/1", R"({
    "@odata.id": "/redfish/v1/Chassis/1",
    "Name": "Chassis One",
    "Power": 100,
    "Status": {"State": "Enabled", "Health": "OK"},
    "Links": {"ManagedBy": [{"@odata.id": "/redfish/v1/Managers/1"}]},
    "Sensors": [{"Name": "Fan", "Reading": 3.5}, "spare"],
    "&&ETag": "W/\"1\""
  })");
  EXPECT_EQ(outcome.out, kSuccessLine);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);

  const std::string chassis = "/redfish/v1/Chassis/1";
  const Store expected = {
      {chassis,
       {Hash{{"@odata.id", "\"/redfish/v1/Chassis/1\""},
             {"Name", "\"Chassis One\""},
             {"Power", "100"},
             {"&&Object Status &&/redfish/v1/Chassis/1/Status", ""},
             {"&&Object Links &&/redfish/v1/Chassis/1/Links", ""},
             {"&&Array Sensors &&/redfish/v1/Chassis/1/Sensors", ""},
             {"&&ETag", "W/\\\"1\\\""}}}},
      {"&&" + chassis + "/Status", {Hash{{"State", "\"Enabled\""}, {"Health", "\"OK\""}}}},
      {"&&" + chassis + "/Links",
       {Hash{{"&&Array ManagedBy &&/redfish/v1/Chassis/1/Links/ManagedBy", ""}}}},
      {"&&" + chassis + "/Links/ManagedBy", {List{"&&ObjectRef /redfish/v1/Managers/1"}}},
      {"&&" + chassis + "/Sensors",
       {List{"&&Object &&/redfish/v1/Chassis/1/Sensors/0", "\"spare\""}}},
      {"&&" + chassis + "/Sensors/0", {Hash{{"Name", "\"Fan\""}, {"Reading", "3.5"}}}},
  };
  EXPECT_EQ(Dump(store), Dump(expected));
  EXPECT_EQ(store, expected);
}

TEST_F(ModelTest, AnObjectWithAnIdAndMoreLiesAtItsId) {
  Create("/r", R"({"Status": {"@odata.id": "/r/Status", "State": "on"}})");
  EXPECT_EQ(Dump(store),
            "hash | /r | &&Object Status /r/Status | \n"
            "hash | /r/Status | @odata.id | \"/r/Status\"\n"
            "hash | /r/Status | State | \"on\"\n");
}

TEST_F(ModelTest, EmptyObjectsAndArraysLeaveOnlyTheirReferences) {
  Create("/r", R"({"O": {}, "A": [], "L": [{}, []]})");
  EXPECT_EQ(Dump(store),
            "list | &&/r/L | &&Object &&/r/L/0\n"
            "list | &&/r/L | &&Array &&/r/L/1\n"
            "hash | /r | &&Array A &&/r/A | \n"
            "hash | /r | &&Array L &&/r/L | \n"
            "hash | /r | &&Object O &&/r/O | \n");
}

TEST_F(ModelTest, AnEmptyRootLeavesNoKey) {
  const Outcome outcome = Create("/r", "{ }");
  EXPECT_EQ(outcome.out, kSuccessLine);
  EXPECT_TRUE(store.empty());
}

TEST_F(ModelTest, ARootWithNothingButAnIdIsAHashAtTheGivenKey) {
  Create("/r", R"({"@odata.id": "/a/b"})");
  EXPECT_EQ(Dump(store), "hash | /r | @odata.id | \"/a/b\"\n");
}

TEST_F(ModelTest, ARootWithAnIdAndMoreGoesToItsId) {
  Create("/r", R"({"@odata.id": "/a/b", "X": 1})");
  EXPECT_EQ(Dump(store), "hash | /a/b | @odata.id | \"/a/b\"\nhash | /a/b | X | 1\n");
}

TEST_F(ModelTest, AMemberNameKeepsItsLastBlank) {
  Create("/r", R"({"A ": [1]})");
  EXPECT_EQ(Dump(store), "list | &&/r/A  | 1\nhash | /r | &&Array A  &&/r/A  | \n");
}

TEST_F(ModelTest, RunsOfSlashesCollapseInDerivedKeysOnly) {
  Create("/r//", R"({"A": {"x": 1}, "B//C/": {"y": 2}})");
  EXPECT_EQ(Dump(store),
            "hash | &&/r/A | x | 1\n"
            "hash | &&/r/B/C/ | y | 2\n"
            "hash | /r// | &&Object A &&/r/A | \n"
            "hash | /r// | &&Object B//C/ &&/r/B/C/ | \n");
}

TEST_F(ModelTest, NestedArraysGetIndexKeys) {
  Create("/r", R"({"M": [1, "x", [true, [null]]]})");
  EXPECT_EQ(Dump(store),
            "list | &&/r/M | 1\n"
            "list | &&/r/M | \"x\"\n"
            "list | &&/r/M | &&Array &&/r/M/2\n"
            "list | &&/r/M/2 | true\n"
            "list | &&/r/M/2 | &&Array &&/r/M/2/1\n"
            "list | &&/r/M/2/1 | null\n"
            "hash | /r | &&Array M &&/r/M | \n");
}

TEST_F(ModelTest, OnlyStringsOfReservedMembersGoWithoutQuotes) {
  Create("/r", R"({"&&Async": true, "&&ETag": "a\"b\\c", "&&Privileges": ["p"],
                   "&&File ": "q", "L": ["&&ETag"]})");
  EXPECT_EQ(Dump(store),
            "list | &&/r/&&Privileges | \"p\"\n"
            "list | &&/r/L | \"&&ETag\"\n"
            "hash | /r | &&Array &&Privileges &&/r/&&Privileges | \n"
            "hash | /r | &&Array L &&/r/L | \n"
            "hash | /r | &&Async | true\n"
            "hash | /r | &&ETag | a\\\"b\\\\c\n"
            "hash | /r | &&File  | \"q\"\n");
}

TEST_F(ModelTest, MembersAtAnIdAreWrittenOnceARun) {
  Create("/r", R"({"A": {"@odata.id": "/x", "v": 1}, "B": {"@odata.id": "/x", "v": 2, "w": 3}})");
  EXPECT_EQ(Dump(store),
            "hash | /r | &&Object A /x | \n"
            "hash | /r | &&Object B /x | \n"
            "hash | /x | @odata.id | \"/x\"\n"
            "hash | /x | v | 1\n");
}

TEST_F(ModelTest, AnObjectWhoseIdIsNoStringFails) {
  const Outcome outcome = Create("/r", R"({"A": 1, "B": {"@odata.id": 7}})");
  EXPECT_EQ(outcome.err,
            ">>> Error occurs while parsing file " + folder.Path() + "/document.json\n");
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.status, 255);
  EXPECT_TRUE(store.empty());
}

TEST_F(ModelTest, TheLastMemberDecidesAboutTheRoot) {
  const Outcome outcome =
      Create("/r", R"({"B": {"@odata.id": 7}, "C": [{"@odata.id": [], "x": 1}, 2], "A": 1})");
  EXPECT_EQ(outcome.out, kSuccessLine);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(Dump(store), "hash | /r | A | 1\n");
}

TEST_F(ModelTest, NestedLevelsStopAtTheFirstFailure) {
  Create("/r", R"({"O": {"a": 1, "bad": {"@odata.id": 7}, "b": 2}, "Z": 0})");
  EXPECT_EQ(Dump(store),
            "hash | &&/r/O | a | 1\n"
            "hash | /r | &&Object O &&/r/O | \n"
            "hash | /r | Z | 0\n");
}

TEST_F(ModelTest, AnEmptyIdIsAKeyLikeAnyOther) {
  Create("/r", R"({"A": {"@odata.id": "", "x": 1}, "B": {"@odata.id": ""}})");
  EXPECT_EQ(Dump(store),
            "hash |  | @odata.id | \"\"\n"
            "hash |  | x | 1\n"
            "hash | /r | &&Object A  | \n"
            "hash | /r | &&ObjectRef B  | \n");
}

TEST(NormalizedKey, CollapsesSlashesAndPutsThePrefixOnce) {
  EXPECT_EQ(NormalizedKey("/redfish/v1/Chassis/1/Status"), "&&/redfish/v1/Chassis/1/Status");
  EXPECT_EQ(NormalizedKey("/redfish/v1//Status"), "&&/redfish/v1/Status");
  EXPECT_EQ(NormalizedKey("&&/redfish/0"), "&&/redfish/0");
  EXPECT_EQ(NormalizedKey("redfish/A"), "&&redfish/A");
  EXPECT_EQ(NormalizedKey("////a///b//"), "&&/a/b/");
  EXPECT_EQ(NormalizedKey(""), "&&");
  EXPECT_EQ(NormalizedKey("&"), "&&&");
}

TEST_F(ModelTest, ScalarsAreRendered) {
  const struct {
    const char* json;
    const char* text;
  } cases[] = {
      {"0", "0"},
      {"-7", "-7"},
      {"-0", "0"},
      {"2147483647", "2147483647"},
      {"2147483648", "2147483647"},
      {"3000000000", "2147483647"},
      {"-2147483648", "-2147483648"},
      {"-3000000000", "-2147483648"},
      {"9223372036854775807", "2147483647"},
      {"1.0", "1."},
      {"1.5", "1.5"},
      {"0.1", "0.1"},
      {"5.0", "5."},
      {"0.0", "0."},
      {"-0.0", "-0."},
      {"100.125", "100.125"},
      {"1e20", "100000000000000000000."},
      {"0.0000004", "0."},
      {"-0.0000004", "-0."},
      {"true", "true"},
      {"false", "false"},
      {"null", "null"},
      {R"("")", R"("")"},
      {R"("\\")", R"("\\")"},
      {R"("\"")", R"("\"")"},
      {R"("a\"b\\c")", R"("a\"b\\c")"},
      {R"("a\nb")", "\"a\nb\""},
      {R"("\u00e9")", "\"\xC3\xA9\""},
  };
  for (const auto& c : cases) {
    Create("/r", std::string("{\"v\": ") + c.json + "}");
    EXPECT_EQ(store, (Store{{"/r", {Hash{{"v", c.text}}}}})) << c.json << "\n" << Dump(store);
  }
}

}  // namespace
}  // namespace model
