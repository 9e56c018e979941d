// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Files that are read once and kept, and the include directory's stand-in.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "base/message.h"
#include "document/file_inclusion.h"
#include "document/json_file.h"
#include "support/temp_directory.h"

namespace ostrafel {

namespace {

std::string TextOf(const json_t* root) {
  char* const text = json_dumps(root, JSON_COMPACT);
  std::string copy = text == nullptr ? "nothing" : text;
  std::free(text);
  return copy;
}

class KeptFilesTest : public testing::Test {
 protected:
  KeptFilesTest() {
    Documents.kept_files = &kept_files;
    Documents.include_root = directory.path("www/");
  }
  KeptFilesTest(const KeptFilesTest&) = delete;
  KeptFilesTest& operator=(const KeptFilesTest&) = delete;
  ~KeptFilesTest() override { Documents = {}; }

  static std::string Messages(const JsonFile& file) {
    std::string messages;
    ostrafel::Messages.collector = &messages;
    PrintJsonFileMessages(file);
    ostrafel::Messages.collector = nullptr;
    return messages;
  }

  TempDirectory directory;
  KeptFiles kept_files;
};

TEST_F(KeptFilesTest, AreReadOnce) {
  const std::string path = directory.Write("a.json", R"({"A": 1})");
  EXPECT_EQ(TextOf(LoadJsonFile(path.c_str()).root.get()), R"({"A":1})");
  (void)directory.Write("a.json", R"({"A": 2})");
  EXPECT_EQ(TextOf(LoadJsonFile(path.c_str()).root.get()), R"({"A":1})");
  std::filesystem::remove(path);
  EXPECT_EQ(TextOf(LoadJsonFile(path.c_str()).root.get()), R"({"A":1})");
  EXPECT_EQ(kept_files.size(), 1U);
}

TEST_F(KeptFilesTest, AreNoneUnlessAskedFor) {
  Documents.kept_files = nullptr;
  const std::string path = directory.Write("a.json", R"({"A": 1})");
  EXPECT_EQ(TextOf(LoadJsonFile(path.c_str()).root.get()), R"({"A":1})");
  (void)directory.Write("a.json", R"({"A": 2})");
  EXPECT_EQ(TextOf(LoadJsonFile(path.c_str()).root.get()), R"({"A":2})");
  EXPECT_TRUE(kept_files.empty());
}

TEST_F(KeptFilesTest, AreToldApartByTheirPaths) {
  const std::string a = directory.Write("a.json", R"({"A": 1})");
  const std::string b = directory.Write("b.json", R"({"B": 2})");
  EXPECT_EQ(TextOf(LoadJsonFile(a.c_str()).root.get()), R"({"A":1})");
  EXPECT_EQ(TextOf(LoadJsonFile(b.c_str()).root.get()), R"({"B":2})");
  EXPECT_EQ(kept_files.size(), 2U);
}

TEST_F(KeptFilesTest, StayAsTheyAreWhenTheRootOfACopyIsChanged) {
  const std::string path = directory.Write("a.json", R"({"A": {"x": 1}, "B": 2})");
  const JsonFile file = LoadJsonFile(path.c_str());
  ASSERT_EQ(json_object_del(file.root.get(), "B"), 0);
  ASSERT_EQ(json_object_set_new(file.root.get(), "C", json_integer(3)), 0);
  ASSERT_EQ(json_object_set_new(file.root.get(), "A", json_null()), 0);
  EXPECT_EQ(TextOf(file.root.get()), R"({"A":null,"C":3})");
  EXPECT_EQ(TextOf(LoadJsonFile(path.c_str()).root.get()), R"({"A":{"x":1},"B":2})");
}

TEST_F(KeptFilesTest, ShareTheirMembersWithTheCopies) {
  const std::string path = directory.Write("a.json", R"({"A": {"x": 1}})");
  const JsonFile one = LoadJsonFile(path.c_str());
  const JsonFile two = LoadJsonFile(path.c_str());
  EXPECT_NE(one.root.get(), two.root.get());
  EXPECT_EQ(json_object_get(one.root.get(), "A"), json_object_get(two.root.get(), "A"));
}

TEST_F(KeptFilesTest, OutliveNoCopy) {
  const std::string path = directory.Write("a.json", R"({"A": {"x": 1}})");
  const JsonFile file = LoadJsonFile(path.c_str());
  kept_files.clear();
  EXPECT_EQ(TextOf(file.root.get()), R"({"A":{"x":1}})");
}

TEST_F(KeptFilesTest, TellAgainWhyTheyWereRefused) {
  const std::string path = directory.Write("a.json", "{\"A\": 1,\n \"B\" 2}");
  const std::string message = "error: on line 2: ':' expected near '2'\n";
  for (int time = 0; time < 2; ++time) {
    const JsonFile file = LoadJsonFile(path.c_str());
    EXPECT_EQ(file.root, nullptr);
    EXPECT_TRUE(file.is_open);
    EXPECT_TRUE(file.is_refused);
    EXPECT_FALSE(file.is_short);
    EXPECT_EQ(file.error.line, 2);
    EXPECT_EQ(Messages(file), message);
    (void)directory.Write("a.json", "{}");  // too late
  }
}

TEST_F(KeptFilesTest, TellAgainThatTheyAreShort) {
  const std::string path = directory.Write("a.json", "{}");
  for (int time = 0; time < 2; ++time) {
    const JsonFile file = LoadJsonFile(path.c_str());
    EXPECT_EQ(TextOf(file.root.get()), "{}");
    EXPECT_EQ(Messages(file), "error: Failed to read file.\n");
  }
}

TEST_F(KeptFilesTest, HoldAnArrayAsItIs) {
  const std::string path = directory.Write("a.json", "[1, [2]]");
  for (int time = 0; time < 2; ++time) {
    const JsonFile file = LoadJsonFile(path.c_str());
    EXPECT_EQ(TextOf(file.root.get()), "[1,[2]]");
    ASSERT_EQ(json_array_clear(file.root.get()), 0);
  }
}

TEST_F(KeptFilesTest, RememberWhatCouldNotBeOpened) {
  const std::string path = directory.path("a.json");
  EXPECT_FALSE(LoadJsonFile(path.c_str()).is_open);
  (void)directory.Write("a.json", "{}");
  EXPECT_FALSE(LoadJsonFile(path.c_str()).is_open);
}

TEST_F(KeptFilesTest, AreIncludedAnyNumberOfTimesFromTheStandIn) {
  (void)directory.Write("www/in.json", R"({"X": {"y": 1}, "&&File": 5})");
  const std::string path = directory.Write("a.json", R"({"&&File": "in.json", "A": 1})");
  const std::string included = directory.path("www/in.json");
  for (int time = 0; time < 2; ++time) {
    const JsonFile file = LoadJsonFile(path.c_str());
    const Inclusion inclusion = ResolveFileInclusion(file.root.get());
    EXPECT_EQ(inclusion.end, InclusionEnd::kDone);
    EXPECT_EQ(inclusion.path, included);
    EXPECT_EQ(TextOf(file.root.get()), R"({"X":{"y":1},"&&File":"in.json"})");
  }
  EXPECT_EQ(TextOf(LoadJsonFile(path.c_str()).root.get()), R"({"&&File":"in.json","A":1})");
  EXPECT_EQ(TextOf(LoadJsonFile(included.c_str()).root.get()), R"({"X":{"y":1},"&&File":5})");
}

TEST_F(KeptFilesTest, AreIncludedFromNowhereElse) {
  (void)directory.Write("in.json", "{}");
  const Document root(json_loads(R"({"&&File": "in.json"})", 0, nullptr));
  const Inclusion inclusion = ResolveFileInclusion(root.get());
  EXPECT_EQ(inclusion.end, InclusionEnd::kNotFound);
  EXPECT_EQ(inclusion.path, directory.path("www/in.json"));
}

}  // namespace

}  // namespace ostrafel
