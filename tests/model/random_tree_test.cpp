// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/random_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <random>
#include <string>

#include "model/endpoint.h"
#include "model/json_value.h"
#include "model/memory_store.h"
#include "model/run_model.h"
#include "support/temp_directory.h"

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

TEST(RandomDocument, IsAnObjectThatTheParserAccepts) {
  const TempDirectory folder;
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

TEST(RandomDocument, IsAsLargeAsAsked) {
  const TempDirectory folder;
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

TEST(RandomTree, StaysWithinItsFolderAndNumber) {
  std::mt19937_64 generator(3);
  RandomTreeOptions options;
  options.folders = 5;
  options.file_name = "other.json";
  options.bare_folder_one_in = 0;
  std::size_t most = 0;
  for (int i = 0; i < 50; ++i) {
    const TempDirectory top;
    WriteRandomTree(generator, top.path(), options);
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(top.path())) {
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

TEST(RandomTree, OftenLoadsWithoutAFailure) {
  std::mt19937_64 generator(5);
  int loaded = 0;
  for (int i = 0; i < 100; ++i) {
    const TempDirectory top;
    WriteRandomTree(generator, top.path(), {});
    Store store;
    MemoryEndpoint endpoint(store);
    loaded += RunModel(endpoint, {"create", top.path(), "/redfish"}).status == 0 ? 1 : 0;
  }
  EXPECT_GE(loaded, 50);  // trees whose ids do not get in each other's way
}

}  // namespace
}  // namespace model
