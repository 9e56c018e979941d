// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/check_fixture.h"
#include "check/without_positions.h"

namespace ostrafel {

namespace {

class RedfishReferences : public CheckTest {
 protected:
  // What is found, without positions.
  Lines Places(const std::string& rules) { return WithoutPositions(Found(rules)); }

  // A resource at the key of its folder, without anything else.
  void WriteResource(const std::string& folder) {
    Write(folder + "/index.json", R"({"@odata.id": "/redfish/v1/)" + folder + R"(", "Name": "n"})");
  }

  // The root with a link to /redfish/v1/C, and C with these members.
  void WriteC(const std::string& members) {
    Write("index.json", R"({"@odata.id": "/redfish/v1", "C": {"@odata.id": "/redfish/v1/C"}})");
    Write("C/index.json", R"({"@odata.id": "/redfish/v1/C", )" + members + "}");
  }
};

// --- redfish-not-member --------------------------------------------------------------------------

TEST_F(RedfishReferences, FindAFolderThatIsNoMember) {
  WriteC(
      R"("Members": [{"@odata.id": "/redfish/v1/C/1"}], "Other": {"@odata.id": "/redfish/v1/C/2"})");
  WriteResource("C/1");
  WriteResource("C/2");
  EXPECT_EQ(Places("redfish-not-member"),
            (Lines{"redfish-not-member C/2/index.json ", "  C/index.json /Members"}));
  EXPECT_EQ(Places("redfish-orphan"), Lines{});
}

TEST_F(RedfishReferences, AcceptMembersHoweverTheyAreListed) {
  WriteC(
      R"("Members": [{"@odata.id": "/redfish/v1/C/1/"}, {"@odata.id": "/redfish/v1/C/2", "a": 1},)"
      R"( {"@odata.id": "/redfish/v1/X"}, {"@odata.id": "/redfish/v1/C/4"}, 7, {}])");
  Write("C/1/index.json", R"({"@odata.id": "/redfish/v1/C/1", "Name": "n"})");
  Write("C/2/index.json", R"({"@odata.id": "/redfish/v1/C/2/", "Name": "n"})");
  Write("C/3/index.json", R"({"@odata.id": "/redfish/v1/X", "Name": "its key is listed"})");
  Write("C/4/index.json", R"({"@odata.id": "/redfish/v1/Y", "Name": "its folder is listed"})");
  EXPECT_EQ(Places("redfish-not-member"), Lines{});
}

TEST_F(RedfishReferences, ExpectOnlyDirectFoldersAmongMembers) {
  WriteC(R"("Members": [])");
  WriteResource("C/folder/1");
  Write("C/other.json", R"({"Name": "n"})");
  EXPECT_EQ(Places("redfish-not-member"), Lines{});
}

TEST_F(RedfishReferences, ExpectMembersOnlyOfAnArrayOfTheRoot) {
  WriteC(R"("Oem": {"Members": []}, "Members": "C/1")");
  WriteResource("C/1");
  EXPECT_EQ(Places("redfish-not-member"), Lines{});
}

TEST_F(RedfishReferences, ExpectNoMembersOfACollectionThatGoesOn) {
  WriteC(R"("Members": [], "Members@odata.nextLink": "/redfish/v1/C?$skip=1")");
  WriteResource("C/1");
  EXPECT_EQ(Places("redfish-not-member"), Lines{});
}

TEST_F(RedfishReferences, KnowNothingOfMembersOfACollectionThatCannotBeRead) {
  WriteC(R"("Members": [)");
  WriteResource("C/1");
  EXPECT_EQ(Places("redfish-not-member"), Lines{});
  EXPECT_EQ(Places("redfish-orphan"), Lines{});
}

TEST_F(RedfishReferences, FindNoMembersOfATopFolderThatIsNoCollection) {
  uri = "/";
  Write("index.json", R"({"@odata.id": "/", "Members": []})");
  Write("1/index.json", R"({"@odata.id": "/1", "Name": "n"})");
  EXPECT_EQ(Places("redfish-not-member"),
            (Lines{"redfish-not-member 1/index.json ", "  index.json /Members"}));
}

// --- redfish-orphan ------------------------------------------------------------------------------

TEST_F(RedfishReferences, FindAResourceThatNobodyRefersTo) {
  WriteC(R"("Name": "/redfish/v1/C/10", "Self": {"@odata.id": "/redfish/v1/C"})");
  WriteResource("C/1");
  EXPECT_EQ(Places("redfish-orphan"), (Lines{"redfish-orphan C/1/index.json "}));
  EXPECT_EQ(Sentences("redfish-orphan"), (Lines{R"(no other file refers to "/redfish/v1/C/1")"}));
}

TEST_F(RedfishReferences, FindAResourceThatOnlyRefersToItself) {
  WriteC(R"("Name": "n")");
  Write("C/1/index.json",
        R"({"@odata.id": "/redfish/v1/C/1", "Self": {"@odata.id": "/redfish/v1/C/1"}})");
  EXPECT_EQ(Places("redfish-orphan"), (Lines{"redfish-orphan C/1/index.json "}));
}

TEST_F(RedfishReferences, AcceptAnyStringThatIsAUriAsReference) {
  WriteC(R"("Uri": "/redfish/v1/C/1?a=b", "List": ["/redfish/v1/C/2#/P", "/redfish/v1/C/3/"],)"
         R"( "Inline": {"@odata.id": "/redfish/v1/C/4#/P", "Name": "n"})");
  for (const char* folder : {"C/1", "C/2", "C/3", "C/4"}) WriteResource(folder);
  EXPECT_EQ(Places("redfish-orphan"), Lines{});
}

TEST_F(RedfishReferences, FindNoOrphanInTheRoot) {
  Write("index.json", R"({"@odata.id": "/redfish/v1/", "Name": "n"})");
  EXPECT_EQ(Places("redfish-orphan"), Lines{});
  uri = "/redfish/v1/";
  EXPECT_EQ(Places("redfish-orphan"), Lines{});
}

TEST_F(RedfishReferences, FindNoOrphanInAFileWhoseKeyAnotherClaims) {
  WriteC(R"("Name": "n")");
  Write("C/1/index.json", R"({"@odata.id": "/redfish/v1/X", "Name": "one"})");
  Write("C/2/index.json", R"({"@odata.id": "/redfish/v1/X", "Name": "two"})");
  // Which of them comes first is up to the folder's listing.
  EXPECT_EQ(Places("redfish-orphan").size(), 1U);
}

TEST_F(RedfishReferences, AcceptALinkToTheFolderOfAFileWithAnotherKey) {
  WriteC(R"("Link": {"@odata.id": "/redfish/v1/C/1"})");
  Write("C/1/index.json", R"({"@odata.id": "/redfish/v1/X", "Name": "one"})");
  EXPECT_EQ(Places("redfish-orphan"), Lines{});
}

TEST_F(RedfishReferences, JudgeOrphansBelowKnownFilesThoughOthersAreNot) {
  WriteC(R"("D": {"@odata.id": "/redfish/v1/C/D"})");
  WriteResource("C/1");
  Write("C/D/index.json", "{");
  WriteResource("C/D/1");
  WriteResource("C/folder/1");
  EXPECT_EQ(Places("redfish-orphan"), (Lines{"redfish-orphan C/1/index.json "}));
}

TEST_F(RedfishReferences, KnowNothingOfWhatAnErrorResponseStandsFor) {
  WriteC(R"("D": {"@odata.id": "/redfish/v1/C/D"})");
  Write("C/D/index.json", R"({"error": {"code": "c"}})");
  WriteResource("C/D/1");
  EXPECT_EQ(Places("redfish-orphan"), Lines{});
}

}  // namespace

}  // namespace ostrafel
