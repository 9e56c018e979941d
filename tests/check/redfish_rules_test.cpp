// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/check_fixture.h"
#include "check/without_positions.h"

namespace ostrafel {

namespace {

// A tree whose root links to the one resource that a test writes, /redfish/v1/C.
class RedfishRules : public CheckTest {
 protected:
  // What is found, without positions.
  Lines Places(const std::string& rules) { return WithoutPositions(Found(rules)); }

  RedfishRules() {
    Write("index.json",
          R"({"@odata.id": "/redfish/v1", "@odata.type": "#R", "Id": "R", "Name": "R",)"
          R"( "C": {"@odata.id": "/redfish/v1/C"}})");
  }

  // Writes that resource, with everything that each resource has, and returns what is found.
  Lines FoundWith(const std::string& rule, const std::string& members) {
    Write("C/index.json",
          R"({"@odata.id": "/redfish/v1/C", "@odata.type": "#C", "Id": "C", "Name": "C",)"
          "\n" +
              members + "}");
    return Places(rule);
  }
};

TEST_F(RedfishRules, FindNothingInASoundTree) {
  EXPECT_EQ(FoundWith("redfish-", R"("Status": {})"), Lines{});
}

// --- redfish-count -------------------------------------------------------------------------------

TEST_F(RedfishRules, FindACountThatIsTooLargeOrTooSmall) {
  EXPECT_EQ(FoundWith("redfish-count", R"("Members": [{}], "Members@odata.count": 2)"),
            (Lines{"redfish-count C/index.json /Members@odata.count"}));
  EXPECT_EQ(FoundWith("redfish-count", R"("Members": [{}], "Members@odata.count": 0)"),
            (Lines{"redfish-count C/index.json /Members@odata.count"}));
  EXPECT_EQ(Sentences("redfish-count"),
            (Lines{R"("Members@odata.count" is 0, but Members has 1)"}));
}

TEST_F(RedfishRules, FindACountThatIsNoInteger) {
  for (const char* count : {"\"1\"", "1.0", "null", "[]"}) {
    EXPECT_EQ(FoundWith("redfish-count",
                        std::string(R"("Members@odata.count": )") + count + R"(, "Members": [{}])"),
              (Lines{"redfish-count C/index.json /Members@odata.count"}))
        << count;
  }
  EXPECT_EQ(Sentences("redfish-count"),
            (Lines{R"("Members@odata.count" is no integer; Members has 1)"}));
}

TEST_F(RedfishRules, AcceptTheCountOfMembers) {
  EXPECT_EQ(FoundWith("redfish-count", R"("Members": [{}, {}], "Members@odata.count": 2)"),
            Lines{});
  EXPECT_EQ(FoundWith("redfish-count", R"("Members": [], "Members@odata.count": 0)"), Lines{});
  EXPECT_EQ(FoundWith("redfish-count", R"("Members": [{}])"), Lines{});
}

TEST_F(RedfishRules, CountOnlyAnArrayMembers) {
  EXPECT_EQ(FoundWith("redfish-count", R"("Members@odata.count": 2)"), Lines{});
  EXPECT_EQ(FoundWith("redfish-count", R"("Members": {"a": 1}, "Members@odata.count": 2)"),
            Lines{});
  EXPECT_EQ(FoundWith("redfish-count", R"("Fans": [{}], "Fans@odata.count": 2)"), Lines{});
}

TEST_F(RedfishRules, AcceptALargerCountWhereTheCollectionGoesOn) {
  const std::string next = R"("Members@odata.nextLink": "/redfish/v1/C?$skip=1", "Members": [{}],)";
  EXPECT_EQ(FoundWith("redfish-count", next + R"("Members@odata.count": 2)"), Lines{});
  EXPECT_EQ(FoundWith("redfish-count", next + R"("Members@odata.count": 1)"), Lines{});
  EXPECT_EQ(FoundWith("redfish-count", next + R"("Members@odata.count": 0)").size(), 1U);
}

TEST_F(RedfishRules, FindAWrongCountOfANestedObject) {
  EXPECT_EQ(
      FoundWith("redfish-count", R"("Oem": [{"a/b": {"Members": [], "Members@odata.count": 3}}])"),
      (Lines{"redfish-count C/index.json /Oem/0/a~1b/Members@odata.count"}));
}

TEST_F(RedfishRules, FindAWrongCountWhereItIsIncludedFrom) {
  Include("c.json", R"({"Members": [], "Members@odata.count": 1})");
  EXPECT_EQ(FoundWith("redfish-count", R"("&&File": "c.json")"),
            (Lines{"redfish-count www/c.json /Members@odata.count"}));
}

// --- redfish-member-id ---------------------------------------------------------------------------

TEST_F(RedfishRules, FindAMemberWhoseIdIsAnotherPlace) {
  EXPECT_EQ(
      FoundWith("redfish-member-id", R"("P": [{"@odata.id": "/redfish/v1/C#/P/1", "Name": "a"}])"),
      (Lines{"redfish-member-id C/index.json /P/0/@odata.id"}));
  EXPECT_EQ(Sentences("redfish-member-id"),
            (Lines{R"(this object says that it is "/redfish/v1/C#/P/1", but it stands at )"
                   R"("/redfish/v1/C#/P/0")"}));
}

TEST_F(RedfishRules, FindAMemberWhoseIdIsInAnotherResource) {
  EXPECT_EQ(
      FoundWith("redfish-member-id", R"("P": {"@odata.id": "/redfish/v1/D#/P", "Name": "a"})"),
      (Lines{"redfish-member-id C/index.json /P/@odata.id"}));
}

TEST_F(RedfishRules, AcceptAMemberWhoseIdIsItsPlace) {
  EXPECT_EQ(FoundWith("redfish-member-id",
                      R"("P": [{"@odata.id": "/redfish/v1/C#/P/0", "Name": "a"},)"
                      R"( {"@odata.id": "#/P/1", "Name": "a"},)"
                      R"( {"@odata.id": "/redfish/v1/C/#/P/2", "Name": "a"}],)"
                      R"( "a b~/\u00e9": {"@odata.id": "#/a%20b~0~1%c3%A9", "Name": "a"})"),
            Lines{});
}

TEST_F(RedfishRules, TakeAPercentSignWithoutDigitsAsItIs) {
  EXPECT_EQ(FoundWith("redfish-member-id", R"("5%": {"@odata.id": "#/5%", "Name": "a"},)"
                                           R"( "%4": {"@odata.id": "#/%4", "Name": "a"},)"
                                           R"( "%zz": {"@odata.id": "#/%zz", "Name": "a"})"),
            Lines{});
}

TEST_F(RedfishRules, JudgeNoIdOfALinkOrWithoutAFragment) {
  EXPECT_EQ(
      FoundWith("redfish-member-id", R"("L": {"@odata.id": "/redfish/v1/C#/P/7"},)"
                                     R"( "O": {"@odata.id": "/redfish/v1/C/O", "Name": "a"})"),
      Lines{});
}

TEST_F(RedfishRules, BlameAWrongKeyNotWhatFollowsTheFolder) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "D": {"@odata.id": "/redfish/v1/D"}})");
  Write("D/index.json",
        R"({"@odata.id": "/redfish/v1/E", "P": {"@odata.id": "/redfish/v1/D#/P", "Name": "a"},)"
        R"( "Actions": {"#D.Reset": {"target": "/redfish/v1/D/Actions/D.Reset"}}})");
  EXPECT_EQ(Places("redfish-member-id"), Lines{});
  EXPECT_EQ(Places("redfish-action-target"), Lines{});
  EXPECT_EQ(Places("redfish-orphan"), Lines{});
}

// --- redfish-action-target -----------------------------------------------------------------------

TEST_F(RedfishRules, FindATargetOfAnotherResource) {
  EXPECT_EQ(FoundWith("redfish-action-target",
                      R"("Actions": {"#C.Reset": {"target": "/redfish/v1/D/Actions/C.Reset"}})"),
            (Lines{"redfish-action-target C/index.json /Actions/#C.Reset/target"}));
  EXPECT_EQ(Sentences("redfish-action-target"),
            (Lines{R"(the target of the action C.Reset should be )"
                   R"("/redfish/v1/C/Actions/C.Reset")"}));
}

TEST_F(RedfishRules, FindATargetOfAnotherName) {
  EXPECT_EQ(FoundWith("redfish-action-target",
                      R"("Actions": {"#C.Reset": {"target": "/redfish/v1/C/Actions/C.Set"}})")
                .size(),
            1U);
  EXPECT_EQ(FoundWith("redfish-action-target",
                      R"("Actions": {"#C.Reset": {"target": "/redfish/v1/C/Actions/Oem/C.Reset"}})")
                .size(),
            1U);
}

TEST_F(RedfishRules, FindATargetThatIsNoString) {
  EXPECT_EQ(FoundWith("redfish-action-target", R"("Actions": {"#C.Reset": {"target": 7}})"),
            (Lines{"redfish-action-target C/index.json /Actions/#C.Reset/target"}));
}

TEST_F(RedfishRules, AcceptATargetBelowItsResource) {
  EXPECT_EQ(FoundWith("redfish-action-target",
                      R"("Actions": {"#C.Reset": {"target": "/redfish/v1/C/Actions/C.Reset"},)"
                      R"( "#C.Set": {"title": "no target"}, "#C.Get": 1,)"
                      R"( "C.Other": {"target": "/elsewhere"}})"),
            Lines{});
}

TEST_F(RedfishRules, AcceptATargetOfAKeyThatEndsWithASlash) {
  Write("C/index.json", R"({"@odata.id": "/redfish/v1/C/", "Actions": {)"
                        R"("#C.Reset": {"target": "/redfish/v1/C/Actions/C.Reset"}}})");
  EXPECT_EQ(Places("redfish-action-target"), Lines{});
}

TEST_F(RedfishRules, JudgeOemActionsByTheirOwnTarget) {
  EXPECT_EQ(FoundWith("redfish-action-target",
                      R"("Actions": {"Oem": {"#X.A": {"target": "/redfish/v1/C/Actions/Oem/X.A"},)"
                      R"( "#X.B": {"target": "/redfish/v1/C/Actions/X.B"},)"
                      "\n"
                      R"( "#X.C": {"target": "/redfish/v1/C/Oem/X.C"}}})"),
            (Lines{"redfish-action-target C/index.json /Actions/Oem/#X.C/target"}));
}

TEST_F(RedfishRules, JudgeNoActionsOfNestedObjects) {
  EXPECT_EQ(FoundWith("redfish-action-target",
                      R"("P": {"Actions": {"#C.Reset": {"target": "/x/Actions/C.Reset"}}})"),
            Lines{});
  EXPECT_EQ(FoundWith("redfish-action-target", R"("Actions": ["#C.Reset"])"), Lines{});
}

// --- redfish-error-body --------------------------------------------------------------------------

TEST_F(RedfishRules, FindAnErrorResponse) {
  for (const char* member : {R"("code": "Base.1.0.GeneralError")", R"("message": "m")",
                             R"("@Message.ExtendedInfo": [])"}) {
    Write("C/index.json", std::string(R"({"error": {)") + member + "}}");
    EXPECT_EQ(Places("redfish-"), (Lines{"redfish-error-body C/index.json /error"})) << member;
  }
}

TEST_F(RedfishRules, AcceptAResourceWithAnError) {
  EXPECT_EQ(FoundWith("redfish-error-body", R"("error": {"code": "c"})"), Lines{});
  Write("C/index.json", R"({"error": "code"})");
  EXPECT_EQ(Places("redfish-error-body"), Lines{});
  Write("C/index.json", R"({"error": {"Name": "code"}})");
  EXPECT_EQ(Places("redfish-error-body"), Lines{});
}

// --- redfish-required ----------------------------------------------------------------------------

TEST_F(RedfishRules, FindAResourceThatLacksWhatEachHas) {
  Write("C/index.json", "\n {\"@odata.id\": \"/redfish/v1/C\", \"Name\": \"C\"}");
  EXPECT_EQ(Places("redfish-required"), (Lines{"redfish-required C/index.json "}));
  EXPECT_EQ(Sentences("redfish-required"), (Lines{R"(this resource lacks "@odata.type", "Id")"}));
}

TEST_F(RedfishRules, RequireNothingOfTheServiceDocument) {
  Write("odata/index.json", R"({"@odata.context": "/redfish/v1/$metadata", "value": []})");
  EXPECT_EQ(FoundWith("redfish-", R"("a": 1)"), Lines{});
  Write("odata/index.json", R"({"@odata.context": "/redfish/v1/$metadata", "value": 1})");
  EXPECT_EQ(Places("redfish-"),
            (Lines{"redfish-orphan odata/index.json ", "redfish-required odata/index.json "}));
}

TEST_F(RedfishRules, AskNoIdOfCollections) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "@odata.type": "#C.C", "Members": []})");
  EXPECT_EQ(Sentences("redfish-required"), (Lines{R"(this resource lacks "Name")"}));
}

TEST(RedfishRule, RequiredIsOffByDefault) { EXPECT_FALSE(RuleOf(RuleId::kRedfishRequired).is_on); }

}  // namespace

}  // namespace ostrafel
