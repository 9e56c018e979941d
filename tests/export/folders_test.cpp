// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/folders.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace ostrafel {

namespace {

// The folder on one line; "none" where there is none.
std::string TextOf(const std::optional<Folder>& folder) {
  if (!folder) return "none";
  return "'" + folder->path + "'" + (folder->has_key ? "" : " without key") +
         (folder->is_spare ? " spare" : "");
}

// That of a key, with nothing taken before.
std::string FolderOf(const std::string& key, const std::string& uri = "/r") {
  return TextOf(Folders(uri, false).TakeOwn(key, true));
}

std::string WindowsFolderOf(const std::string& key) {
  return TextOf(Folders("/r", true).TakeOwn(key, true));
}

TEST(TakeOwn, IsThePathBelowTheUri) {
  EXPECT_EQ(FolderOf("/r"), "''");
  EXPECT_EQ(FolderOf("/r/A"), "'A'");
  EXPECT_EQ(FolderOf("/r/A/b c/&&D/%41"), "'A/b c/&&D/%41'");
  EXPECT_EQ(FolderOf("/r/A", "/r/"), "'A'");
  EXPECT_EQ(FolderOf("/r/", "/r/"), "''");
  EXPECT_EQ(FolderOf("/A", "/"), "'A'");
  EXPECT_EQ(FolderOf("/", "/"), "''");
  EXPECT_EQ(FolderOf("r/A", "r"), "'A'");
}

TEST(TakeOwn, IsNoneOfWhatIsNotBelowTheUri) {
  for (const char* key : {"/", "", "/rA", "/x", "&&/r/A", "r"}) EXPECT_EQ(FolderOf(key), "none");
  EXPECT_EQ(FolderOf("/r", "/r/"), "none");
}

TEST(TakeOwn, OfAKeyWithAFinalSlashDoesNotGiveTheKey) {
  EXPECT_EQ(FolderOf("/r/A/"), "'A' without key");
  EXPECT_EQ(FolderOf("/r/"), "'' without key");
  EXPECT_EQ(FolderOf("/r//"), "none");
  EXPECT_EQ(FolderOf("/r/A//"), "none");
}

TEST(TakeOwn, GivesAFolderOfAnotherKeyOnlyToWhatTellsItsOwn) {
  Folders folders("/r", true);
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/A/", false)), "none");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/a:", false)), "none");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/a%3A", false)), "'a%3A'");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/A/", true)), "'A' without key");
}

TEST(TakeOwn, IsNoneOfStepsThatNameNoFolder) {
  for (const char* key : {"/r//A", "/r/A//B", "/r/.", "/r/..", "/r/A/../B", "/r/./A",
                          "/r/index.json", "/r/index.json/A", "/r/A/index.json"}) {
    EXPECT_EQ(FolderOf(key), "none") << key;
  }
  EXPECT_EQ(FolderOf(std::string("/r/a\0b", 6)), "none");
  EXPECT_EQ(FolderOf("/r/.../..A/Index.json/index.json2"), "'.../..A/Index.json/index.json2'");
}

TEST(TakeOwn, HasNamesAndPathsOfLimitedLength) {
  const std::string longest(255, 'x');
  EXPECT_EQ(FolderOf("/r/" + longest), "'" + longest + "'");
  EXPECT_EQ(FolderOf("/r/x" + longest), "none");
  std::string path = longest;  // of 12 names, with the slashes 3071
  for (int i = 1; i < 12; ++i) path += "/" + longest;
  ASSERT_EQ(path.size(), 3071U);
  EXPECT_EQ(FolderOf("/r/" + path), "'" + path + "'");
  path.resize(path.size() - 2);
  EXPECT_EQ(FolderOf("/r/" + path + "/ab"), "'" + path + "/ab'");
  EXPECT_EQ(FolderOf("/r/" + path + "/abc"), "none");
}

TEST(TakeOwn, HasFewSteps) {
  std::string path = "x";
  for (int i = 1; i < 128; ++i) path += "/x";
  EXPECT_EQ(FolderOf("/r/" + path), "'" + path + "'");
  EXPECT_EQ(FolderOf("/r/" + path + "/x"), "none");
}

TEST(TakeOwn, GivesEachFolderOnce) {
  Folders folders("/r", false);
  EXPECT_EQ(TextOf(folders.TakeOwn("/r", true)), "''");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/", true)), "none");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/A/B", true)), "'A/B'");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/A/B", true)), "none");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/A", true)), "'A'");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/A/", true)), "none");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/a", true)), "'a'");
}

TEST(TakeOwn, OfAKeyThatItRefusesTakesNothing) {
  Folders folders("/r", false);
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/A//", true)), "none");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/A", true)), "'A'");
}

TEST(WindowsNames, ReplaceEachForbiddenCharacter) {
  const std::string forbidden = "<>:\"|?*\\";
  const std::vector<std::string> replaced = {"%3C", "%3E", "%3A", "%22",
                                             "%7C", "%3F", "%2A", "%5C"};
  for (std::size_t i = 0; i < forbidden.size(); ++i) {
    EXPECT_EQ(WindowsFolderOf("/r/a" + forbidden.substr(i, 1) + "b"),
              "'a" + replaced[i] + "b' without key");
  }
  EXPECT_EQ(WindowsFolderOf("/r/\x01\x1f\x7f\xC3\xA9"), "'%01%1F%7F%C3%A9' without key");
  EXPECT_EQ(WindowsFolderOf("/r/a b!#$&'()+,-;=@[]^_`{}~.c"), "'a b!#$&'()+,-;=@[]^_`{}~.c'");
  EXPECT_EQ(WindowsFolderOf("/r/a:/b"), "'a%3A/b' without key");
}

TEST(WindowsNames, EndWithNoDotAndNoBlank) {
  EXPECT_EQ(WindowsFolderOf("/r/a."), "'a%2E' without key");
  EXPECT_EQ(WindowsFolderOf("/r/a "), "'a%20' without key");
  EXPECT_EQ(WindowsFolderOf("/r/a../b"), "'a.%2E/b' without key");
  EXPECT_EQ(WindowsFolderOf("/r/.a b"), "'.a b'");
  EXPECT_EQ(WindowsFolderOf("/r/.."), "none");
}

TEST(WindowsNames, AreNoDevices) {
  struct Case {
    const char* device;
    const char* name;
  };
  for (const auto& [device, name] : {Case{"con", "%63on"},
                                     {"PRN", "%50RN"},
                                     {"Aux", "%41ux"},
                                     {"nul", "%6Eul"},
                                     {"COM1", "%43OM1"},
                                     {"com9", "%63om9"},
                                     {"LPT1", "%4CPT1"},
                                     {"lpt9", "%6Cpt9"},
                                     {"CONIN$", "%43ONIN$"},
                                     {"conout$", "%63onout$"}}) {
    for (const std::string end : {"", ".x", ".x.y", " .x"}) {
      EXPECT_EQ(WindowsFolderOf("/r/" + (device + end)), "'" + (name + end) + "' without key");
    }
  }
  for (const char* name :
       {"cons", "com", "com0", "com10", "lpt", "xcon", "x.con", "COMA", "con$", " con"}) {
    EXPECT_EQ(WindowsFolderOf("/r/" + std::string(name)), "'" + std::string(name) + "'");
  }
}

TEST(WindowsNames, AreNoNamesOfTheFiles) {
  EXPECT_EQ(WindowsFolderOf("/r/INDEX.json"), "none");
  EXPECT_EQ(WindowsFolderOf("/r/Index.JSON/A"), "none");
}

TEST(WindowsNames, AreAsLongAsWhatIsReplaced) {
  EXPECT_EQ(WindowsFolderOf("/r/" + std::string(85, ':')).substr(0, 4), "'%3A");
  EXPECT_EQ(WindowsFolderOf("/r/" + std::string(86, ':')), "none");
}

TEST(WindowsNames, DoNotDifferInCaseOnly) {
  Folders folders("/r", true);
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/Abc/D", true)), "'Abc/D'");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/Abc/d", true)), "none");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/abc", true)), "none");  // the folder on the way
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/aBc/E", true)), "none");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/Abc/E", true)), "'Abc/E'");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/Abc", true)), "'Abc'");
}

TEST(WindowsNames, OfAKeyThatIsRefusedTakeNothing) {
  Folders folders("/r", true);
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/A/B", true)), "'A/B'");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/a/C", true)), "none");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/A/c", true)), "'A/c'");
}

TEST(WindowsNames, OfKeysThatBecomeTheSameAreGivenOnce) {
  Folders folders("/r", true);
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/a%3Ab", true)), "'a%3Ab'");
  EXPECT_EQ(TextOf(folders.TakeOwn("/r/a:b", true)), "none");
}

TEST(TakeSpare, GivesNumbersThatNoKeyHasOrIsBelow) {
  for (const bool windows_names : {false, true}) {
    Folders folders("/r", windows_names);
    EXPECT_EQ(TextOf(folders.TakeOwn("/r/%1", true)), "'%1'");
    EXPECT_EQ(TextOf(folders.TakeOwn("/r/%3/%2", true)), "'%3/%2'");
    EXPECT_EQ(TextOf(folders.TakeSpare()), "'%2' without key spare");
    EXPECT_EQ(TextOf(folders.TakeSpare()), "'%4' without key spare");
    EXPECT_EQ(TextOf(folders.TakeSpare()), "'%5' without key spare");
  }
}

}  // namespace

}  // namespace ostrafel
