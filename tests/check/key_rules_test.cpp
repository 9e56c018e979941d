// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <algorithm>

#include "check/check_fixture.h"

namespace ostrafel {

namespace {

class KeyRules : public CheckTest {
 protected:
  /// The spots of the findings of the rules, names in order.
  std::string Spots(const std::string& rules) {
    std::string spots;
    for (const Finding& finding : Check()) {
      if (std::string(RuleOf(finding.rule).name) != rules) continue;
      spots += finding.place.spot == Spot::kName ? "n" : "v";
    }
    return spots;
  }

  /// The keys of the findings of a rule.
  Lines Keys(const std::string& rule) {
    Lines keys;
    for (const Finding& finding : Check()) {
      if (std::string(RuleOf(finding.rule).name) == rule) keys.push_back(finding.key.value_or("-"));
    }
    std::sort(keys.begin(), keys.end());
    return keys;
  }

  /// Writes a sound file: it says the key that its folder stands for, and has a name.
  void WriteSound(const std::string& folder) {
    const std::string key = folder.empty() ? uri : uri + "/" + folder;
    Write((folder.empty() ? "" : folder + "/") + "index.json",
          R"({"@odata.id": ")" + key + R"(", "Name": "N"})");
  }
};

TEST_F(KeyRules, FindNothingInASoundTree) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "Chassis": {"@odata.id": "/redfish/v1/C"}})");
  Write("C/index.json", R"({"@odata.id": "/redfish/v1/C", "Name": "C"})");
  EXPECT_EQ(Found("key-"), Lines{});
}

// --- key-claimed-twice

TEST_F(KeyRules, LeaveKeysToWhoWritesThemAfterABadId) {
  Write("index.json",
        R"({"A": [{"@odata.id": 5}, {"@odata.id": "/redfish/v1/K", "B": 1}],
            "C": {"@odata.id": "/redfish/v1/K", "D": 4294967296},
            "E": [{"@odata.id": 5}, {"@odata.id": "/redfish/v1/L", "F": {"@odata.id": 6}}],
            "G": {"@odata.id": "/redfish/v1/L"}})");
  EXPECT_EQ(Found("key-"), Lines{});
  EXPECT_EQ(Pointers("store-"), (Lines{"store-integer-clamped index.json /C/D"}));
  EXPECT_EQ(Pointers("link-"), Lines{});
  EXPECT_EQ(Found("load-id-type").size(), 3U);
}

TEST_F(KeyRules, TellTheSecondClaimOfAKeyInOneFile) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "A": {"@odata.id": "/redfish/v1/x", "N": 1},
      "B": {"@odata.id": "/redfish/v1/x", "N": 2}, "C": {"@odata.id": "/redfish/v1/x", "N": 3}})");
  EXPECT_EQ(Pointers("key-"), (Lines{"key-claimed-twice index.json /B/@odata.id",
                                     "  index.json /A/@odata.id", "  index.json /C/@odata.id"}));
  EXPECT_EQ(Sentences("key-"),
            Lines{"an object further up in this file writes \"/redfish/v1/x\", too, and comes "
                  "first, so the members here are lost, like those of 1 more"});
}

TEST_F(KeyRules, TellAnObjectThatHasTheKeyOfItsFile) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "A": {"@odata.id": "/redfish/v1", "N": 1}})");
  EXPECT_EQ(Pointers("key-"),
            (Lines{"key-claimed-twice index.json /A/@odata.id", "  index.json /@odata.id"}));
  EXPECT_EQ(Sentences("key-"), Lines{"the root of this file writes \"/redfish/v1\", too, and comes "
                                     "first, so the members here are lost"});
}

TEST_F(KeyRules, TellTheSecondOfTwoFilesThatClaimAKey) {
  WriteSound("");
  WriteSound("A");
  Write("B/index.json", R"({"Name": 1, "@odata.id": "/redfish/v1/A"})");
  const Lines found = Pointers("key-claimed");
  // The listing order of the folders decides.
  const Lines second_a = {"key-claimed-twice A/index.json /@odata.id", "  B/index.json /@odata.id"};
  const Lines second_b = {"key-claimed-twice B/index.json /@odata.id", "  A/index.json /@odata.id"};
  EXPECT_TRUE(found == second_a || found == second_b) << ::testing::PrintToString(found);
  EXPECT_EQ(Sentences("key-claimed"),
            Lines{"another file writes \"/redfish/v1/A\", too, and is loaded first because its "
                  "folder happens to be listed first, so the members here are lost"});
}

TEST_F(KeyRules, TellAFileWithoutIdWhoseKeyIsClaimedAtItsRoot) {
  Write("index.json",
        R"({"@odata.id": "/redfish/v1", "A": {"@odata.id": "/redfish/v1/A", "N": 1}})");
  Write("A/index.json", R"({"Name": "A"})");
  const Lines found = Pointers("key-");
  const Lines second_a = {"key-claimed-twice A/index.json ", "  index.json /A/@odata.id"};
  const Lines second_root = {"key-claimed-twice index.json /A/@odata.id", "  A/index.json "};
  EXPECT_TRUE(found == second_a || found == second_root) << ::testing::PrintToString(found);
}

TEST_F(KeyRules, TakeNoLinkForAClaim) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "A": {"@odata.id": "/redfish/v1/A"},
      "B": {"@odata.id": "/redfish/v1/A"}})");
  WriteSound("A");
  EXPECT_EQ(Found("key-"), Lines{});
}

TEST_F(KeyRules, SayNothingOfWhatALostObjectHolds) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "A": {"@odata.id": "/redfish/v1", "*": 1,
      "B C": 1, "B": 1, "D": {"@odata.id": "/other", "N": 1}}})");
  EXPECT_EQ(Pointers("key-"),
            (Lines{"key-claimed-twice index.json /A/@odata.id", "  index.json /@odata.id"}));
}

// --- key-not-path, key-trailing-slash

TEST_F(KeyRules, TellAFileThatSaysItIsAnother) {
  WriteSound("");
  Write("A/index.json", R"({"Name": "A", "@odata.id": "/redfish/v1/B"})");
  EXPECT_EQ(Pointers("key-"), Lines{"key-not-path A/index.json /@odata.id"});
  EXPECT_EQ(Keys("key-not-path"), Lines{"/redfish/v1/B"});
  EXPECT_EQ(Sentences("key-"), Lines{"the file says that it is \"/redfish/v1/B\", and is stored as "
                                     "that, but its folder stands for \"/redfish/v1/A\""});
}

TEST_F(KeyRules, TellAFileThatHoldsNothingButAnotherKey) {
  WriteSound("");
  Write("A/index.json", R"({"@odata.id": "/redfish/v1/B"})");
  EXPECT_EQ(Pointers("key-"), Lines{"key-not-path A/index.json /@odata.id"});
  EXPECT_EQ(Keys("key-not-path"), Lines{"/redfish/v1/A"});
  EXPECT_EQ(Sentences("key-"),
            Lines{"the file says that it is \"/redfish/v1/B\", but holds nothing "
                  "else and is stored as \"/redfish/v1/A\", which its folder "
                  "stands for"});
}

TEST_F(KeyRules, TellASlashAtTheEnd) {
  Write("index.json", R"({"@odata.id": "/redfish/v1/", "Name": "N"})");
  Write("A/index.json", R"({"@odata.id": "/redfish/v1/A//", "Name": "N"})");
  EXPECT_EQ(Pointers("key-"), (Lines{"key-not-path A/index.json /@odata.id",
                                     "key-trailing-slash index.json /@odata.id"}));
  EXPECT_EQ(Sentences("key-trailing"),
            Lines{"the file says that it is \"/redfish/v1/\", and its folder that it is "
                  "\"/redfish/v1\": two keys, though only a slash at the end differs"});
}

TEST_F(KeyRules, TellASlashThatIsMissingAtTheEnd) {
  uri = "/r/";
  Write("index.json", R"({"@odata.id": "/r", "Name": "N"})");
  Write("A/index.json", R"({"@odata.id": "/r/A", "Name": "N"})");
  EXPECT_EQ(Pointers("key-trailing"), Lines{"key-trailing-slash index.json /@odata.id"});
  EXPECT_EQ(Pointers("key-not-path"), Lines{});
}

TEST_F(KeyRules, LetAFileHaveNoId) {
  Write("index.json", R"({"Name": "N"})");
  Write("A/index.json", R"({"Name": "N"})");
  EXPECT_EQ(Found("key-"), Lines{});
}

TEST_F(KeyRules, LookAtTheFileItselfForWhatItSaysNotAtWhatItIncludes) {
  WriteSound("");
  Write("A/index.json", R"({"@odata.id": "/redfish/v1/B", "&&File": "a.json"})");
  Write("C/index.json", R"({"@odata.id": "/redfish/v1/C", "&&File": "a.json"})");
  Include("a.json", R"({"@odata.id": "/redfish/v1/X", "Name": "X"})");
  EXPECT_EQ(Pointers("key-"), Lines{"key-not-path A/index.json /@odata.id"});
}

TEST_F(KeyRules, TellAFileThatCannotIncludeAndSaysItIsAnother) {
  WriteSound("");
  Write("A/index.json", R"({"@odata.id": "/redfish/v1/B", "&&File": "none.json"})");
  EXPECT_EQ(Pointers("key-"), Lines{"key-not-path A/index.json /@odata.id"});
}

// --- key-outside-uri

TEST_F(KeyRules, TellKeysThatACreateDoesNotRemove) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "A": {"@odata.id": "#/A", "N": 1},
      "B": {"@odata.id": "/redfish/v10", "N": 1, "Parts": [1]},
      "C": {"@odata.id": "/redfish/v1/C", "N": 1}, "D": {"@odata.id": "/redfish/v1#/D", "N": 1},
      "E": {"@odata.id": "/elsewhere"}})");
  EXPECT_EQ(Pointers("key-"), (Lines{"key-outside-uri index.json /A/@odata.id",
                                     "key-outside-uri index.json /B/@odata.id",
                                     "key-outside-uri index.json /D/@odata.id"}));
  EXPECT_EQ(Sentences("key-")[0],
            "a create of \"/redfish/v1\" does not remove \"#/A\", so what an older tree stored "
            "there stays and is mixed with this");
}

TEST_F(KeyRules, TellAFileOutsideOfTheUriByBothRules) {
  WriteSound("");
  Write("A/index.json", R"({"@odata.id": "/other/A", "Name": "N"})");
  EXPECT_EQ(Pointers("key-"), (Lines{"key-not-path A/index.json /@odata.id",
                                     "key-outside-uri A/index.json /@odata.id"}));
}

TEST_F(KeyRules, TellPartsThatACreateDoesNotRemoveOncePerResource) {
  uri = "/redfish//v1";
  Write("index.json", R"({"Name": "N", "A": {"B": [1]}, "C": [2]})");
  Write("X/index.json", R"({"Name": "N", "D": {}})");
  EXPECT_EQ(Pointers("key-"), Lines{"key-outside-uri index.json "});
  EXPECT_EQ(Keys("key-outside-uri"), Lines{"&&/redfish/v1/A"});
}

TEST_F(KeyRules, TakeWhatPatternsOfTheUriTake) {
  uri = "/redfish/";
  Write("index.json", R"({"Name": "N", "A": {"@odata.id": "/redfish/#/A", "N": [1]}})");
  EXPECT_EQ(Found("key-outside"), Lines{});
}

// --- key-glob

TEST_F(KeyRules, TellGlobCharactersInKeysWhereTheyComeIn) {
  WriteSound("");
  WriteSound("A[1]");
  WriteSound("A[1]/B");
  Write("A[1]/B/C/index.json", R"({"@odata.id": "/redfish/v1/A[1]/B/C", "N": 1,
      "D": {"@odata.id": "/redfish/v1/A[1]#/D", "N": 1}})");
  WriteSound("A[1]!");
  Write("E*/index.json", R"({"Name": "N"})");
  EXPECT_EQ(Pointers("key-"),
            (Lines{"key-glob A[1]!/index.json /@odata.id", "key-glob A[1]/index.json /@odata.id",
                   "key-glob E*/index.json "}));
  EXPECT_EQ(Sentences("key-")[1],
            "\"[\" begins a choice of characters where an update searches for "
            "\"/redfish/v1/A[1]\", so it finds others instead");
}

TEST_F(KeyRules, TellGlobCharactersInEachName) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "A*": {"B?": 1, "C": 2}, "[D": [{"\\": 1}],
      "E]": "*", "F": {"@odata.id": "/redfish/v1"}})");
  EXPECT_EQ(Pointers("key-"), (Lines{"key-glob index.json /A*", "key-glob index.json /A*/B?",
                                     "key-glob index.json /[D", "key-glob index.json /[D/0/\\"}));
  EXPECT_EQ(Spots("key-glob"), "nnnn");
  const Lines sentences = Sentences("key-");
  EXPECT_EQ(sentences[0],
            "\"*\" stands for any characters where an update searches for \"A*\", so "
            "it finds others as well");
  EXPECT_EQ(sentences[1],
            "\"?\" stands for any one character where an update searches for \"B?\", "
            "so it finds others as well");
  EXPECT_EQ(sentences[3],
            "\"\\\" takes its meaning from the character after it where an update "
            "searches for \"\\\", so it finds others instead");
}

TEST_F(KeyRules, PointToTheKeyAndToTheName) {
  Write("index.json", "\xEF\xBB\xBF{\r\n\t\"ä\": 1, \"A*\":\r\n1, \"@odata.id\": \"/r[\"}");
  EXPECT_EQ(Found("key-glob"),
            (Lines{"key-glob index.json:2:10 /A*", "key-glob index.json:3:17 /@odata.id"}));
}

// --- key-case

TEST_F(KeyRules, TellKeysThatDifferInCase) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "A": {"@odata.id": "/redfish/v1/x", "N": 1},
      "B": {"@odata.id": "/redfish/v1/X", "N": 1}, "C": {"@odata.id": "/redfish/V1/x", "N": 1},
      "D": {"@odata.id": "/redfish/v1/Y", "N": 1}})");
  EXPECT_EQ(Pointers("key-case"),
            (Lines{"key-case index.json /B/@odata.id", "  index.json /A/@odata.id",
                   "key-case index.json /C/@odata.id", "  index.json /A/@odata.id"}));
  EXPECT_EQ(Sentences("key-case")[0],
            "\"/redfish/v1/X\" differs from \"/redfish/v1/x\" in upper and "
            "lower case only, and both are kept, one beside the other");
}

TEST_F(KeyRules, TellMembersThatDifferInCaseWhenTheyHaveKeys) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "list": [{"a": 1}], "LIST": [{"a": 1}],
      "Status": {"A": {"X": 1}, "b": 1}, "status": {"A": {"X": 1}, "B": 1},
      "Empty": {}, "empty": {}, "Word": 1, "word": {"a": 1}})");
  EXPECT_EQ(Pointers("key-"), (Lines{"key-case index.json /LIST", "  index.json /list",
                                     "key-case index.json /status", "  index.json /Status"}));
  EXPECT_EQ(Spots("key-case"), "nn");
}

TEST_F(KeyRules, TellOnlyTheFoldersThatBeginToDifferInCase) {
  WriteSound("");
  for (const std::string folder : {"Ab", "AB"}) {
    WriteSound(folder);
    Write(folder + "/C/index.json", R"({"Name": "N", "P": {"Q": [1]}, "@odata.id": ")" + uri + "/" +
                                        folder + "/C\", \"F\": [{\"@odata.id\": \"" + uri + "/" +
                                        folder + "/C#/F/0\", \"N\": 1}]}");
  }
  EXPECT_EQ(Keys("key-case").size(), 1);
  EXPECT_EQ(Keys("key-case")[0].size(), std::string("/redfish/v1/Ab").size());
  // Folders without files of their own do not: then it begins below.
  Write("xX/Y/index.json", R"({"Name": "N"})");
  Write("xx/Y/index.json", R"({"Name": "N"})");
  EXPECT_EQ(Keys("key-case").size(), 2);
  // Nor does one that has a file beside one that has none.
  WriteSound("xx");
  EXPECT_EQ(Keys("key-case").size(), 2);
}

TEST_F(KeyRules, KnowNoCaseButThatOfAscii) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "ä": [1], "Ä": [1], "[1]": [1], "{1}": [1],
      "@": [1], "`": [1]})");
  EXPECT_EQ(Found("key-case"), Lines{});
}

// --- key-blank

TEST_F(KeyRules, TellNamesThatGoOnAfterABlank) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "A B": 1, "A": 2, "A B C": 3, "A!": 4,
      "A C": 5, "AB": 6, "D E": 7, "In": {"A B": 1, "B": 2, "F ": {}, "F": []}})");
  EXPECT_EQ(Pointers("key-"),
            (Lines{"key-blank index.json /A B", "  index.json /A", "key-blank index.json /A B C",
                   "  index.json /A B", "key-blank index.json /A C", "  index.json /A",
                   "key-blank index.json /In/F ", "  index.json /In/F"}));
  EXPECT_EQ(Spots("key-blank"), "nnnn");
  EXPECT_EQ(Sentences("key-")[0],
            "an update of \"A\" also takes the links of \"A B\" for its own, "
            "because this name is the other and goes on after a blank");
}

TEST_F(KeyRules, TellAnEmptyNameBesideOneThatBeginsWithABlank) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "": 1, " A": 2})");
  EXPECT_EQ(Pointers("key-"), (Lines{"key-blank index.json / A", "  index.json /"}));
}

TEST_F(KeyRules, TellNothingOfNamesInDifferentObjects) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "A": {"A B": 1}, "X": [{"A C": 1}]})");
  EXPECT_EQ(Found("key-"), Lines{});
}

}  // namespace

}  // namespace ostrafel
