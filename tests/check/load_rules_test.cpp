// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/load_rules.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "check/check_fixture.h"

namespace ostrafel {

namespace {

class LoadRules : public CheckTest {
 protected:
  /// Makes a symbolic link below the top folder.
  void Link(const std::string& target, const std::string& path) {
    const std::filesystem::path link = directory.path("tree/" + path);
    std::filesystem::create_directories(link.parent_path());
    std::filesystem::create_symlink(target, link);
  }
};

// What the rules find in a listing with these problems and no file, as "rule path".
Lines FoundInListing(LoadEnd end, std::vector<std::pair<PathProblem, std::string>> problems) {
  Survey survey;
  survey.request = {LoadAction::kCreate, "tree", "/redfish/v1", "index.json"};
  survey.listing.end = end;
  survey.listing.problems = std::move(problems);
  Findings findings;
  CheckLoadRules(survey, &findings);
  Lines lines;
  for (const Finding& finding : findings) {
    lines.push_back(std::string(RuleOf(finding.rule).name) + " " + finding.place.path);
  }
  return lines;
}

TEST_F(LoadRules, FindNothingInASoundTree) {
  Include("part.json", R"({"@odata.id": "/redfish/v1/I", "Name": "I", "A": [{"B": []}, 1]})");
  Write("index.json", R"({"@odata.id": "/redfish/v1", "Chassis": {"@odata.id": "/redfish/v1/C"}})");
  Write("C/index.json", R"({"@odata.id": "/redfish/v1/C", "Name": "C"})");
  Write("I/index.json", R"({"@odata.id": "/redfish/v1/I", "&&File": "part.json"})");
  EXPECT_EQ(Found("load-"), Lines{});
}

// --- load-unreadable ---

TEST_F(LoadRules, FindLinksThatLeadNowhere) {
  Write("index.json", "{}");
  Link("nothing", "C/index.json");
  Link("loop", "loop");
  EXPECT_EQ(Found("load-"), (Lines{"load-unreadable C/index.json", "load-unreadable loop"}));
  EXPECT_EQ(Sentences("load-").front(), "the path leads nowhere, and the load passes it over");
}

TEST_F(LoadRules, LeaveLinksToWhatCannotBeLookedAtAlone) {
  Write("index.json",
        R"({"C": {"@odata.id": "/redfish/v1/C"}, "D": {"@odata.id": "/redfish/v1/D"}})");
  Link("nothing", "C/index.json");
  Link("nothing", "D/other.json");
  EXPECT_EQ(Found("link-"), (Lines{"link-dangling index.json:1:58 /D/@odata.id"}));
}

TEST_F(LoadRules, TellOfAFolderThatCannotBeSearchedOnce) {
  const auto not_checked = PathProblem::kNotChecked;
  EXPECT_EQ(FoundInListing(LoadEnd::kDone, {{not_checked, "tree/C/index.json"},
                                            {not_checked, "tree/C/."},
                                            {not_checked, "tree/C/.."},
                                            {not_checked, "tree/D/index.json"}}),
            (Lines{"load-unreadable tree/C", "load-unreadable tree/D/index.json"}));
}

TEST_F(LoadRules, FindFoldersThatCannotBeRead) {
  EXPECT_EQ(FoundInListing(LoadEnd::kNotWalked, {{PathProblem::kNotOpened, "tree/C"}}),
            (Lines{"load-unreadable tree/C"}));
}

TEST_F(LoadRules, FindFilesThatCannotBeOpened) {
  if (geteuid() == 0) GTEST_SKIP() << "root opens every file";
  Write("index.json", "{}");
  std::filesystem::permissions(directory.path("tree/index.json"), std::filesystem::perms::none);
  EXPECT_EQ(Found("load-"), (Lines{"load-unreadable index.json"}));
}

TEST_F(LoadRules, FindFilesThatCannotBeReadToTheirEnd) {
  Link("/proc/self/mem", "index.json");
  EXPECT_EQ(Found("load-"), (Lines{"load-unreadable index.json"}));
  EXPECT_EQ(Sentences("load-"), (Lines{"the file cannot be read, and the load ends at this file"}));
}

// --- load-syntax ---

TEST_F(LoadRules, FindWhatTheParserRefuses) {
  Write("index.json", "{\"A\": 1,\n \"B\": }");
  EXPECT_EQ(Found("load-"), (Lines{"load-syntax index.json:2:7"}));
  EXPECT_EQ(Sentences("load-"), (Lines{"the loader's parser refuses the text, and the load ends "
                                       "here: unexpected token near '}'"}));
}

TEST_F(LoadRules, FindIntegersBeyond64Bits) {
  Write("index.json", R"({"A": 9223372036854775808})");
  Write("C/index.json", R"({"A": 9223372036854775807})");
  EXPECT_EQ(Found("load-"), (Lines{"load-syntax index.json:1:7"}));
}

TEST_F(LoadRules, FindShortFilesAndBareScalars) {
  Write("A/index.json", "");
  Write("B/index.json", "{}");
  Write("C/index.json", "17");
  EXPECT_EQ(Found("load-"),
            (Lines{"load-syntax A/index.json:1:1", "load-syntax C/index.json:1:1"}));
}

TEST_F(LoadRules, FindWhatTheParserRefusesOfAnIncludedFileOnce) {
  Include("part.json", "{\n x}");
  Write("A/index.json", R"({"&&File": "part.json"})");
  Write("B/index.json", R"({"&&File": "part.json"})");
  Lines found = Found("load-");
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, (Lines{"  A/index.json:1:12 /&&File", "  B/index.json:1:12 /&&File",
                          "load-syntax www/part.json:2:2"}));
}

// --- load-not-object ---

TEST_F(LoadRules, FindArraysInPlaceOfObjects) {
  Include("list.json", "\n[1]");
  Write("A/index.json", " [{}]");
  Write("B/index.json", R"({"&&File": "list.json"})");
  EXPECT_EQ(Found("load-"),
            (Lines{"load-not-object A/index.json:1:2 ", "load-not-object B/index.json:1:12 /&&File",
                   "  www/list.json:2:1 "}));
}

// --- load-id-type ---

TEST_F(LoadRules, FindRootsWhoseIdIsNoString) {
  Write("A/index.json", R"({"@odata.id": 5, "Name": "A"})");
  Write("B/index.json", R"({"@odata.id": 5})");
  EXPECT_EQ(Found("load-"), (Lines{"load-id-type A/index.json:1:15 /@odata.id"}));
}

TEST_F(LoadRules, FindNestedIdsThatAreNoStrings) {
  Write("index.json",
        "{\"Lost\": {\"@odata.id\": null}, \"Name\": \"A\",\n"
        " \"Last\": {\"In\": {\"@odata.id\": 7}}}");
  EXPECT_EQ(Found("load-"), (Lines{"load-id-type index.json:1:24 /Lost/@odata.id",
                                   "load-id-type index.json:2:31 /Last/In/@odata.id"}));
  EXPECT_EQ(
      Sentences("load-"),
      (Lines{"the \"@odata.id\" of the object is no string, and the object is left out "
             "without a message",
             "the \"@odata.id\" of the object is no string, and the load ends at this file"}));
}

TEST_F(LoadRules, SayNothingOfIdsThatTheLoaderDoesNotComeTo) {
  Write(
      "index.json",
      R"({"@odata.id": "/redfish/v1", "In": {"@odata.id": "/redfish/v1", "A": {"@odata.id": 1}}})");
  EXPECT_EQ(Found("load-"), Lines{});
}

// --- load-include ---

TEST_F(LoadRules, FindInclusionsThatFail) {
  Include("folder.json/part", "");
  Include("any.xml", "no JSON");
  Write("A/index.json", R"({"&&File": 1})");
  Write("B/index.json", R"({"&&File": "a..json"})");
  Write("C/index.json", R"({"&&File": "none.json"})");
  Write("D/index.json", R"({"&&File": "folder.json"})");
  Write("E/index.json", R"({"&&File": "any.xml", "In": {"&&File": "none.json"}})");
  EXPECT_EQ(
      Found("load-"),
      (Lines{"load-include A/index.json:1:12 /&&File", "load-include B/index.json:1:12 /&&File",
             "load-include C/index.json:1:12 /&&File", "load-include D/index.json:1:12 /&&File"}));
  const std::string www = directory.path("www/");
  EXPECT_EQ(
      Sentences("load-"),
      (Lines{"the value of \"&&File\" is no string, and the load ends at this file",
             "the name of a file to include must not hold \"..\", and the load ends at this file",
             "the file to include, " + www +
                 "none.json, cannot be found or opened, and the load ends at this file",
             "the file to include, " + www +
                 "folder.json, cannot be read, and the load ends at this file"}));
}

// --- load-key-type ---

TEST_F(LoadRules, FindKeysThatWouldBeAHashAndAList) {
  Write("index.json",
        "{\"A/B\": {\"C\": 1},\n"
        " \"A\": {\"B\": [1, 2]}, \"D\": {\"B\": []}, \"D/B\": {\"C\": 1}}");
  EXPECT_EQ(Found("load-"),
            (Lines{"load-key-type index.json:2:13 /A/B", "  index.json:1:9 /A~1B"}));
  const Findings findings = Check();
  const auto found = std::find_if(findings.begin(), findings.end(), [](const Finding& finding) {
    return finding.rule == RuleId::kLoadKeyType;
  });
  ASSERT_NE(found, findings.end());
  EXPECT_EQ(found->key, "&&/redfish/v1/A/B");
}

TEST_F(LoadRules, FindKeysOfTwoKindsInTwoFiles) {
  Write("index.json", R"({"C": {"D": [1]}})");
  Write("C/index.json", R"({"D": {"E": 1}})");
  const Lines found = Found("load-");
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found.front().substr(0, 14), "load-key-type ");
}

TEST_F(LoadRules, BlameOnlyTheRefusedKeyForWhatIsLostWithIt) {
  // More values than are sent at a time: those that go with the refused one are lost as well.
  std::string text = "{\"A/B\": [1], \"A\": {\"B\": {\"C\": 1}}";
  for (int i = 0; i < 5000; ++i) {
    text += ",\n\"M" + std::to_string(i) + "\": {\"N\": [" + std::to_string(i) + "]}";
  }
  Write("index.json", text + "}");
  EXPECT_EQ(Found("load-"),
            (Lines{"load-key-type index.json:1:25 /A/B", "  index.json:1:9 /A~1B"}));
}

// --- load-lost-member ---

TEST_F(LoadRules, FindWhatABadIdKeepsFromBeingStored) {
  Write("index.json",
        "{\"Before\": {\"X\": 1},\n"
        " \"O\": {\"Kept\": 1, \"In\": {\"Bad\": {\"@odata.id\": 1}, \"B\": {\"C\": 1}},\n"
        "  \"D\": 1, \"E\": {\"@odata.id\": \"/x\"}},\n"
        " \"After\": 1}");
  EXPECT_EQ(
      Found("load-lost"),
      (Lines{"load-lost-member index.json:2:56 /O/In/B", "  index.json:2:47 /O/In/Bad/@odata.id",
             "load-lost-member index.json:3:8 /O/D", "  index.json:2:47 /O/In/Bad/@odata.id",
             "load-lost-member index.json:3:16 /O/E", "  index.json:2:47 /O/In/Bad/@odata.id"}));
  EXPECT_EQ(
      Sentences("load-lost").front(),
      "the member \"B\" is not stored, since an object before it has an \"@odata.id\" that is "
      "no string, which ends all that is around that object");
}

TEST_F(LoadRules, FindArraysThatABadIdKeepsFromBeingRecorded) {
  Write("index.json",
        "{\"A\": [1, {\"@odata.id\": 1}, 2],\n"
        " \"B\": [{\"C\": [{\"@odata.id\": 1}], \"D\": 1}], \"After\": 1}");
  EXPECT_EQ(Found("load-lost"),
            (Lines{"load-lost-member index.json:1:7 /A", "  index.json:1:25 /A/1/@odata.id",
                   "load-lost-member index.json:2:7 /B", "  index.json:2:29 /B/0/C/0/@odata.id"}));
  EXPECT_EQ(Sentences("load-lost").front(),
            "the member \"A\" is not stored, since an object in it has an \"@odata.id\" that is no "
            "string");
}

TEST_F(LoadRules, SayNothingMoreOfAFileThatEndsTheLoad) {
  Write("index.json", R"({"A": {"B": {"@odata.id": 1}, "C": 1}})");
  EXPECT_EQ(Found("load-"), (Lines{"load-id-type index.json:1:27 /A/B/@odata.id"}));
}

TEST_F(LoadRules, FindMembersThatIncludedOnesReplace) {
  Include("part.json", R"({"Same": [1], "Other": 2, "New": 3})");
  Write("index.json",
        "{\"@odata.id\": \"/redfish/v1\", \"&&File\": \"part.json\",\n"
        " \"Same\": [1], \"Other\": 1,\n"
        " \"Gone\": {\"A\": 1}}");
  EXPECT_EQ(Found("load-"),
            (Lines{"load-lost-member index.json:2:24 /Other", "  index.json:1:40 /&&File",
                   "load-lost-member index.json:3:10 /Gone", "  index.json:1:40 /&&File"}));
}

TEST_F(LoadRules, FindInclusionsInIncludedFiles) {
  Include("part.json", R"({"A": 1, "&&File": "other.json"})");
  Include("self.json", R"({"A": 1, "&&File": "self.json"})");
  Write("index.json", R"({"&&File": "part.json"})");
  Write("C/index.json", R"({"&&File": "self.json"})");
  EXPECT_EQ(Found("load-"),
            (Lines{"load-lost-member www/part.json:1:20 /&&File", "  index.json:1:12 /&&File"}));
}

TEST_F(LoadRules, FindValuesThatOthersReplace) {
  Write("index.json",
        "{\"A/B\": {\"Lost\": 1, \"Same\": 1},\n"
        " \"A\": {\"B\": {\"Lost\": 2, \"Same\": 1}},\n"
        " \"S\": {\"x\": 1},\n"
        " \"&&Object S &&/redfish/v1/S\": 5}");
  EXPECT_EQ(Found("load-"),
            (Lines{"load-lost-member index.json:1:18 /A~1B/Lost", "  index.json:2:22 /A/B/Lost",
                   "load-lost-member index.json:3:7 /S",
                   "  index.json:4:32 /&&Object S &&~1redfish~1v1~1S"}));
  EXPECT_EQ(Sentences("load-").front(),
            "the member \"Lost\" is not stored, since another value, which has the same place in "
            "the store, replaces it");
}

TEST_F(LoadRules, FindArraysThatShareAList) {
  Write("index.json",
        "{\"A/B\": [1],\n"
        " \"A\": {\"B\": [1, 2]}, \"C\": [1], \"D\": {\"B\": []}, \"D//B\": [1]}");
  EXPECT_EQ(Found("load-"),
            (Lines{"load-lost-member index.json:2:13 /A/B", "  index.json:1:9 /A~1B"}));
}

TEST_F(LoadRules, FindArraysOfTwoFilesThatShareAList) {
  Write("index.json", R"({"C": {"D": [1]}})");
  Write("C/index.json", R"({"D": [1]})");
  Lines found = Found("load-");
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found.front().substr(0, 17), "load-lost-member ");
  EXPECT_EQ(found.back().substr(0, 2), "  ");
}

TEST_F(LoadRules, SayNothingOfMembersOfALostClaim) {
  Write("index.json",
        R"({"@odata.id": "/redfish/v1", "A": [{"@odata.id": "/redfish/v1", "B": {"C": [1]}}]})");
  EXPECT_EQ(Found("load-"), Lines{});
}

TEST_F(LoadRules, SurviveDeepNesting) {
  std::string text;
  for (int i = 0; i < 300; ++i) text += R"({"@odata.id": "/)" + std::to_string(i) + R"(", "A": [)";
  text += R"({"@odata.id": 1})";
  for (int i = 0; i < 300; ++i) text += "]}";
  Write("index.json", text);
  EXPECT_EQ(Found("load-").size(), 1U);
}

// --- load-nothing ---

TEST_F(LoadRules, FindNothingToLoad) {
  Write("C/other.json", "{}");
  EXPECT_EQ(Found("load-"), (Lines{"load-nothing -"}));
  EXPECT_EQ(
      Sentences("load-"),
      (Lines{"no file named index.json, ending in \".json\", is in " + directory.path("tree") +
             " or in a folder below, and the load succeeds without storing anything"}));
}

TEST_F(LoadRules, FindNothingWherePathsLeadNowhere) {
  const auto not_checked = PathProblem::kNotChecked;
  EXPECT_EQ(FoundInListing(LoadEnd::kNoSuchPath, {{not_checked, "tree"}}),
            (Lines{"load-nothing "}));
  EXPECT_EQ(FoundInListing(LoadEnd::kDone, {{not_checked, "tree/index.json"}}),
            (Lines{"load-unreadable tree/index.json"}));
  EXPECT_EQ(FoundInListing(LoadEnd::kDone, {{not_checked, "tree/other"}}),
            (Lines{"load-unreadable tree/other", "load-nothing "}));
}

}  // namespace

}  // namespace ostrafel
