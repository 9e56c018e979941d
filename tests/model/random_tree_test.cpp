// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/random_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <random>
#include <string>

#include "model/json_value.h"
#include "model/model_fixture.h"

namespace model {
namespace {

std::size_t CountInside(const JsonValue& value) {
  std::size_t count = value.members.size() + value.elements.size();
  for (const JsonMember& member : value.members) count += CountInside(member.value);
  for (const JsonValue& element : value.elements) count += CountInside(element);
  return count;
}

TEST(RandomDocument, EqualSeedsGiveEqualTexts) {
  std::mt19937_64 one(7);
  std::mt19937_64 two(7);
  std::mt19937_64 other(8);
  const std::string text = RandomDocument(one, {}, "/r");
  EXPECT_EQ(text, RandomDocument(two, {}, "/r"));
  EXPECT_NE(text, RandomDocument(other, {}, "/r"));
}

TEST_F(ModelTest, RandomDocumentsAreObjectsThatTheParserAccepts) {
  std::mt19937_64 generator(1);
  RandomTreeOptions options;
  options.bad_id_one_in = 10;
  options.include_files = {"a.json"};
  for (int i = 0; i < 500; ++i) {
    const std::string text = RandomDocument(generator, options, "/redfish/A");
    std::string err;
    const auto value = LoadJson(folder.Write("d.json", text), err);
    ASSERT_TRUE(value) << err << text;
    ASSERT_EQ(value->kind, JsonValue::Kind::kObject) << text;
  }
}

TEST_F(ModelTest, BulkDocumentsAreAsLargeAsAsked) {
  std::mt19937_64 generator(1);
  RandomTreeOptions options;
  options.bulk = 2500;
  for (int i = 0; i < 20; ++i) {
    std::string err;
    const auto value =
        LoadJson(folder.Write("d.json", RandomDocument(generator, options, "/r")), err);
    ASSERT_TRUE(value) << err;
    EXPECT_GE(CountInside(*value), 2500u);
  }
}

TEST_F(ModelTest, RandomTreesStayWithinTheirFolderAndNumber) {
  std::mt19937_64 generator(3);
  RandomTreeOptions options;
  options.folders = 5;
  options.file_name = "other.json";
  options.bare_folder_one_in = 0;
  std::size_t most = 0;
  for (int i = 0; i < 50; ++i) {
    const std::string top = folder.Path() + "/" + std::to_string(i);
    std::filesystem::create_directory(top);
    WriteRandomTree(generator, top, options);
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(top)) {
      if (!entry.is_regular_file()) continue;
      EXPECT_EQ(entry.path().filename(), "other.json");
      ++files;
    }
    EXPECT_GE(files, 1u);
    EXPECT_LE(files, 5u);
    most = std::max(most, files);
  }
  EXPECT_EQ(most, 5u);
}

TEST_F(ModelTest, TheSameRandomTreeTwiceGivesTheSameStore) {
  std::mt19937_64 generator(5);
  std::size_t loaded = 0;
  for (int i = 0; i < 100; ++i) {
    const std::string top = folder.Path() + "/" + std::to_string(i);
    std::filesystem::create_directory(top);
    WriteRandomTree(generator, top, {});
    store.clear();
    const Outcome first = Play({"create", top, "/redfish"});
    const Store once = store;
    store.clear();
    const Outcome second = Play({"create", top, "/redfish"});
    EXPECT_EQ(first.err, second.err);
    EXPECT_EQ(Dump(store), Dump(once));
    loaded += first.status == 0 ? 1u : 0u;
  }
  EXPECT_GE(loaded, 50u);  // trees whose ids do not get in each other's way
}

}  // namespace
}  // namespace model
