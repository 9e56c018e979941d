// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Paths and keys of unusual form that a walk meets.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "loading/expect_no_problem.h"
#include "loading/static_data_walk.h"
#include "support/temp_directory.h"

namespace ostrafel {

namespace {

TEST(StaticDataNames, AnEmptyRootKeyStandsForTheRoot) {
  const TempDirectory tree;
  tree.Write("v1/Systems/index.json", "{}");
  LoadList list;
  ASSERT_TRUE(WalkStaticData(tree.path(), "", "index.json", &list, ExpectNoProblem));
  EXPECT_EQ(list.keys, std::vector<std::string>{"/v1/Systems"});
}

TEST(StaticDataNames, AFileWithoutAPointInItsWholePathIsNoJsonFile) {
  const TempDirectory tree;
  tree.Write("json", "{}");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(tree.path());
  const bool is_json_file = IsJsonFile("json", ExpectNoProblem);
  std::filesystem::current_path(before);
  EXPECT_FALSE(is_json_file);
}

}  // namespace

}  // namespace ostrafel
