// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/tree_arguments.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "document/json_file.h"
#include "support/temp_directory.h"
#include "tool/tool.h"

namespace ostrafel {

namespace {

using Words = std::vector<std::string>;

// What is said of arguments that are wrong, less the name in front and the hint behind.
std::string ComplaintOf(const Words& words, std::size_t needed) {
  TreeArguments tree;
  testing::internal::CaptureStderr();
  EXPECT_EQ(TakeTreeArguments(words, needed, &tree), kTrouble);
  const std::string text = testing::internal::GetCapturedStderr();
  const std::size_t start = std::string(ToolName).size() + 2;
  return text.substr(start, text.find('\n') - start);
}

TreeArguments Taken(const Words& words, std::size_t needed) {
  TreeArguments tree;
  EXPECT_FALSE(TakeTreeArguments(words, needed, &tree));
  return tree;
}

TreeArguments At(const std::string& static_data_path) {
  TreeArguments tree;
  tree.static_data_path = static_data_path;
  return tree;
}

TEST(TreeArguments, HaveDefaultsForWhatIsLeftOut) {
  const TreeArguments one = Taken({"t"}, 1);
  EXPECT_EQ(one.static_data_path, "t");
  EXPECT_EQ(one.uri, "/redfish/v1");
  EXPECT_EQ(one.file_name, "index.json");
  const TreeArguments all = Taken({"t", "/r", "f"}, 2);
  EXPECT_EQ(all.uri, "/r");
  EXPECT_EQ(all.file_name, "f");
  EXPECT_EQ(Taken({"t", "/r", ""}, 2).file_name, "index.json");
}

TEST(TreeArguments, SayWhatIsMissingOrTooMuch) {
  EXPECT_EQ(ComplaintOf({}, 1), "no StaticDataPath is given");
  EXPECT_EQ(ComplaintOf({"t"}, 2), "no URI is given");
  EXPECT_EQ(ComplaintOf({"t", "/r", "f", "x"}, 1), "one argument too many: 'x'");
  EXPECT_EQ(ComplaintOf({""}, 1), "StaticDataPath and URI must not be empty");
  EXPECT_EQ(ComplaintOf({"t", ""}, 1), "StaticDataPath and URI must not be empty");
}

TEST(TreeArguments, MakeTheRequest) {
  const LoadRequest request = RequestOf(Taken({"t", "/r", "f"}, 2), LoadAction::kUpdate);
  EXPECT_EQ(request.action, LoadAction::kUpdate);
  EXPECT_EQ(request.static_data_path, "t");
  EXPECT_EQ(request.uri, "/r");
  EXPECT_EQ(request.file_name, "f");
}

TEST(TreeArguments, SetTheIncludeFolder) {
  const TempDirectory directory;
  TreeArguments tree;
  EXPECT_TRUE(SetIncludeRoot(tree));
  EXPECT_EQ(Documents.include_root, IncludeRoot);
  EXPECT_FALSE(TakeIncludeFolder(directory.path(), &tree));
  EXPECT_TRUE(SetIncludeRoot(tree));
  EXPECT_EQ(Documents.include_root, directory.path() + "/");
  Documents = {};
  tree.www = directory.path("none/");
  testing::internal::CaptureStderr();
  EXPECT_FALSE(SetIncludeRoot(tree));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            ToolName + std::string(": ") + tree.www + ": is no folder\n");
}

TEST(RelativePaths, LackWhatWasTyped) {
  EXPECT_EQ(RelativePath(At("tree"), "tree/Chassis/index.json"), "Chassis/index.json");
  EXPECT_EQ(RelativePath(At("tree/"), "tree//Chassis/index.json"), "Chassis/index.json");
  EXPECT_EQ(RelativePath(At("tree///"), "tree////index.json"), "index.json");
  EXPECT_EQ(RelativePath(At("./a/../tree"), "./a/../tree/index.json"), "index.json");
  EXPECT_EQ(RelativePath(At("/"), "//index.json"), "index.json");
  EXPECT_EQ(RelativePath(At("t"), "t/a/b"), "a/b");
  EXPECT_EQ(RelativePath(At("t//"), "t///a"), "a");
  EXPECT_EQ(RelativePath(At("/"), "/a"), "a");
}

TEST(RelativePaths, AreThePathsThemselvesElsewhere) {
  EXPECT_EQ(RelativePath(At("tree"), "trees/index.json"), "trees/index.json");
  EXPECT_EQ(RelativePath(At("tree"), "tree"), "tree");
  EXPECT_EQ(RelativePath(At("tree/"), "tree/"), "tree/");
  EXPECT_EQ(RelativePath(At("tree/index.json"), "tree/index.json"), "tree/index.json");
  EXPECT_EQ(RelativePath(At("tree"), "/www/x.json"), "/www/x.json");
  EXPECT_EQ(RelativePath(At("tree"), ""), "");
  EXPECT_EQ(RelativePath(At("t"), "tu/a"), "tu/a");
  EXPECT_EQ(RelativePath(At("t.json"), "t.json"), "t.json");
  EXPECT_EQ(RelativePath(At("t"), "t/"), "t/");
  EXPECT_EQ(RelativePath(At("t"), "/www/x"), "/www/x");
}

TEST(ShownPaths, AreThoseThatAnEditorOpens) {
  EXPECT_EQ(ShownPath(At("tree"), "tree/a/index.json"), "tree/a/index.json");
  EXPECT_EQ(ShownPath(At("tree//"), "tree///a/index.json"), "tree/a/index.json");
  EXPECT_EQ(ShownPath(At("/"), "//a/index.json"), "/a/index.json");
  EXPECT_EQ(ShownPath(At("tree/"), "/www//x.json"), "/www//x.json");
  EXPECT_EQ(ShownPath(At("tree/"), ""), "tree/");
  EXPECT_EQ(ShownPath(At("t"), "t/a/b"), "t/a/b");
  EXPECT_EQ(ShownPath(At("t//"), "t///a"), "t/a");
  EXPECT_EQ(ShownPath(At("/"), "//a"), "/a");
  EXPECT_EQ(ShownPath(At("t.json"), "t.json"), "t.json");
  EXPECT_EQ(ShownPath(At("t/"), ""), "t/");
  EXPECT_EQ(ShownPath(At("t"), "/www/x"), "/www/x");
}

TEST(RefusePath, SaysWhy) {
  const TempDirectory directory;
  const auto said_of = [](const std::string& path) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(RefusePath(path), kTrouble);
    return testing::internal::GetCapturedStderr();
  };
  const std::string start = ToolName + std::string(": ");
  EXPECT_EQ(said_of(directory.path("none")),
            start + directory.path("none") + ": No such file or directory\n");
  const std::string file = directory.Write("a.txt", "");
  EXPECT_EQ(said_of(file),
            start + file + ": is neither a folder nor a file whose name ends in .json\n");
}

}  // namespace

}  // namespace ostrafel
