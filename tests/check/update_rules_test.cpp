// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/check_fixture.h"
#include "check/without_positions.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

// What waits is sent when it is many, and what was sent before a removal is lost with it. The
// members of one file have an order, which files do not have.
class UpdateRules : public CheckTest {
 protected:
  // What is found, without positions.
  Lines Places(const std::string& rules) { return WithoutPositions(Found(rules)); }

  // A member that makes the values before it be sent: of fields in a hash, or elements in a list.
  static std::string Fields() {
    std::string text = R"("Fields": {)";
    for (std::uint32_t i = 0; i < BatchLimit; ++i) text += "\"" + std::to_string(i) + "\": 0,";
    return text + "\"last\": 0}";
  }
  static std::string Elements() {
    std::string text = R"("Elements": [)";
    for (std::uint32_t i = 0; i < BatchLimit; ++i) text += "\"e\",";
    return text + "\"last\"]";
  }

  // What an update loses of a tree of one file, with the lines of these members.
  Lines LostOf(const Lines& members) {
    std::string text = R"({"@odata.id": "/redfish/v1")";
    for (const std::string& member : members) text += ",\n" + member;
    Write("index.json", text + "}");
    return Places("update-loses");
  }

  std::string ReasonOf(std::size_t finding) {
    const std::string sentence = Sentences("update-loses").at(finding);
    return sentence.substr(sentence.find(", because") + 2);
  }
};

TEST_F(UpdateRules, FindNothingInASoundTree) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "Chassis": {"@odata.id": "/redfish/v1/C"}})");
  Write("C/index.json", R"({"@odata.id": "/redfish/v1/C", "Name": "C"})");
  EXPECT_EQ(Places("update-"), Lines{});
}

// --- update-loses --------------------------------------------------------------------------------

TEST_F(UpdateRules, LoseWhatIsStoredBelowAnArrayThatComesLater) {
  const std::string part =
      R"("P": {"@odata.id": "/redfish/v1/Fans/0", "Name": "n", "Status": {"State": "on"}})";
  const std::string fans = R"("Fans": [{"Name": "a"}])";
  EXPECT_EQ(LostOf({part, Fields(), fans}),
            (Lines{"update-loses index.json /P/Status", "  index.json /Fans"}));
  EXPECT_EQ(Sentences("update-loses"),
            (Lines{"an update of the unchanged tree loses this object, because its key begins like "
                   "that of the array \"&&/redfish/v1/Fans\", whose update removes everything "
                   "below itself"}));
}

TEST_F(UpdateRules, LoseNothingBelowAnArrayThatComesBeforeOrAtOnce) {
  const std::string part =
      R"("P": {"@odata.id": "/redfish/v1/Fans/0", "Name": "n", "Status": {"State": "on"}})";
  const std::string fans = R"("Fans": [{"Name": "a"}])";
  EXPECT_EQ(LostOf({fans, Fields(), part}), Lines{});
  EXPECT_EQ(LostOf({part, fans, Fields()}), Lines{});
}

TEST_F(UpdateRules, LoseNothingBelowAnArrayOfPlainValues) {
  EXPECT_EQ(LostOf({R"("P": {"@odata.id": "/redfish/v1/Fans/0", "S": {"State": "on"}})", Fields(),
                    R"("Fans": ["a"])"}),
            Lines{});
}

TEST_F(UpdateRules, LoseEveryKeyOfASubtreeButNotWhatIsInThem) {
  EXPECT_EQ(LostOf({R"("P": {"@odata.id": "/redfish/v1/Fans/0", "A": {"B": {"c": 1, "d": 2}},)"
                    R"( "L": ["x", "y"], "E": {}, "Plain": 1})",
                    Fields(), R"("Fans": [{}])"}),
            (Lines{"update-loses index.json /P/A", "  index.json /Fans",
                   "update-loses index.json /P/A/B", "  index.json /Fans"}));
}

TEST_F(UpdateRules, LoseTheRecordsOfAKeyThatWereSentBeforeTheOthers) {
  // The limit lies between "a" and "b": the object is removed with "a" and written with "b".
  std::string before = R"("Before": {)";
  for (std::uint32_t i = 0; i < BatchLimit - 7; ++i) before += "\"" + std::to_string(i) + "\": 0,";
  const Lines lost =
      LostOf({before + R"("last": 0})",
              R"("P": {"@odata.id": "/redfish/v1/F/0", "S": {"a": 1, "b": 2}})", R"("F": [{}])"});
  EXPECT_EQ(lost, (Lines{"update-loses index.json /P/S/a", "  index.json /F"}));
  EXPECT_EQ(Sentences("update-loses").front().substr(0, 50),
            "an update of the unchanged tree loses this value, ");
}

TEST_F(UpdateRules, LoseAnArrayWhoseKeyAnEmptyOneHas) {
  EXPECT_EQ(LostOf({R"("P": {"@odata.id": "/redfish/v1/A", "B": [1, 2]})", Elements(),
                    R"("A": {"B": []})"}),
            (Lines{"update-loses index.json /P/B", "  index.json /A/B"}));
  EXPECT_EQ(ReasonOf(0),
            "because a value that comes after it has the key \"&&/redfish/v1/A/B\", and its update "
            "removes what lies there");
}

TEST_F(UpdateRules, LoseElementsOfAnArrayWhoseKeyAnotherHas) {
  EXPECT_EQ(LostOf({R"("P": {"@odata.id": "/redfish/v1/A", "B": [1, 2, 1]})", Elements(),
                    R"("A": {"B": [1]})"}),
            (Lines{"update-loses index.json /P/B/0", "  index.json /A/B",
                   "update-loses index.json /P/B/1", "  index.json /A/B",
                   "update-loses index.json /P/B/2", "  index.json /A/B"}));
  EXPECT_EQ(ReasonOf(0),
            "because another value is written to its key \"&&/redfish/v1/A/B\" after it, and the "
            "update removes what that one may have held");
}

TEST_F(UpdateRules, LoseWhatHasTheKeyThatALaterValueWouldHave) {
  const std::string later = R"("A": {"B": "plain"})";
  EXPECT_EQ(LostOf({R"("P": {"@odata.id": "/redfish/v1/A", "B": {"c": 1}})", Fields(), later}),
            (Lines{"update-loses index.json /P/B", "  index.json /A/B"}));
  EXPECT_EQ(LostOf({R"("P": {"@odata.id": "/redfish/v1/A", "B": ["c"]})", Elements(), later}),
            (Lines{"update-loses index.json /P/B", "  index.json /A/B"}));
  EXPECT_EQ(ReasonOf(0),
            "because a value that comes after it would have the key \"&&/redfish/v1/A/B\" as an "
            "object, and its update removes what lies there");
  EXPECT_EQ(LostOf({later, Fields(), R"("P": {"@odata.id": "/redfish/v1/A", "B": {"c": 1}})"}),
            Lines{});
}

TEST_F(UpdateRules, LoseAnArrayWhoseKeyAnEmptyObjectHas) {
  EXPECT_EQ(
      LostOf({R"("P": {"@odata.id": "/redfish/v1/A", "B": [1]})", Elements(), R"("A": {"B": {}})"}),
      (Lines{"update-loses index.json /P/B", "  index.json /A/B"}));
}

TEST_F(UpdateRules, LoseAnObjectThatIsALinkInWhatHasTheSameKey) {
  EXPECT_EQ(LostOf({R"("A": {"B": {"C": {"d": 1}}})", Fields(),
                    R"("A/B": {"C": {"@odata.id": "/redfish/v1"}})"}),
            (Lines{"update-loses index.json /A/B/C", "  index.json /A~1B/C"}));
}

TEST_F(UpdateRules, LoseALinkWhoseNameGoesOnAfterAnother) {
  EXPECT_EQ(LostOf({R"("A B": {"@odata.id": "/redfish/v1"})", Fields(), R"("A": 1)"}),
            (Lines{"update-loses index.json /A B", "  index.json /A"}));
  EXPECT_EQ(ReasonOf(0),
            "because the update of the member \"A\" removes the links of all members whose names "
            "begin with \"A \"");
  EXPECT_EQ(LostOf({R"("A": 1)", Fields(), R"("A B": {"@odata.id": "/redfish/v1"})"}), Lines{});
}

TEST_F(UpdateRules, LoseANumberThatIsTheIndexOfALaterObject) {
  std::string list = R"("List": [)";
  for (std::uint32_t i = 0; i < BatchLimit; ++i) list += i == 7 ? "2001," : "\"e\",";
  list += R"("last", {"a": 1}])";
  EXPECT_EQ(LostOf({list}), (Lines{"update-loses index.json /List/7", "  index.json /List/2001"}));
  EXPECT_EQ(ReasonOf(0), "because the update of element 2001 removes all that read 2001");
}

TEST_F(UpdateRules, BlameNoUpdateForAKeyOfTwoTypes) {
  EXPECT_EQ(LostOf({R"("P": {"@odata.id": "/redfish/v1/A", "B": {"c": 1}})", Fields(),
                    R"("A": {"B": ["x"]})"}),
            Lines{});
}

// --- update-slow ---------------------------------------------------------------------------------

TEST_F(UpdateRules, TellOfOneSearch) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "A": [{"@odata.id": "/redfish/v1"}]})");
  EXPECT_EQ(Places("update-"), (Lines{"update-slow -"}));
  EXPECT_EQ(Sentences("update-"),
            (Lines{"an update makes the server search all of its keys once, for an array that "
                   "holds objects, arrays or links: with the 2 keys of this tree alone it looks at "
                   "2"}));
}

TEST_F(UpdateRules, TellOfManySearches) {
  std::string text = R"({"@odata.id": "/redfish/v1")";
  for (int i = 0; i < 1000; ++i) text += ", \"" + std::to_string(i) + "\": [{\"a\": 1}]";
  Write("index.json", text + "}");
  EXPECT_EQ(Places("update-"), (Lines{"update-slow -"}));
  EXPECT_EQ(Sentences("update-"),
            (Lines{"an update makes the server search all of its keys 1,000 times, once for each "
                   "array that holds objects, arrays or links: with the 2,001 keys of this tree "
                   "alone it looks at 2,001,000"}));
}

TEST_F(UpdateRules, TellOfNoSearchForPlainOrEmptyArrays) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "A": [1, "a"], "B": []})");
  EXPECT_EQ(Places("update-"), Lines{});
}

}  // namespace

}  // namespace ostrafel
