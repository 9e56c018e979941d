// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Published Redfish trees, where they are at hand: each folder of REDFISH_MOCKUPS is one tree.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "system/model_check.h"

namespace {

class Mockups : public ModelCheckedTest {
 protected:
  // The trees; none, with a skip, when there is no folder of them.
  static std::vector<std::string> Trees() {
    const char* folder = std::getenv("REDFISH_MOCKUPS");
    std::vector<std::string> trees;
    if (folder == nullptr) return trees;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      if (entry.is_directory()) trees.push_back(entry.path().string());
    }
    std::sort(trees.begin(), trees.end());
    EXPECT_FALSE(trees.empty()) << folder << " holds no tree";
    return trees;
  }
};

constexpr const char* kSkipped = "REDFISH_MOCKUPS names no folder of Redfish trees";

TEST_F(Mockups, AreCreatedAsTheModelSays) {
  if (std::getenv("REDFISH_MOCKUPS") == nullptr) GTEST_SKIP() << kSkipped;
  for (const std::string& mockup : Trees()) {
    (void)store.Run("FLUSHALL");
    ASSERT_NO_FATAL_FAILURE(RunBoth({"create", mockup, "/redfish/v1"})) << mockup;
  }
}

TEST_F(Mockups, AreUpdatedAsTheModelSays) {
  if (std::getenv("REDFISH_MOCKUPS") == nullptr) GTEST_SKIP() << kSkipped;
  for (const std::string& mockup : Trees()) {
    (void)store.Run("FLUSHALL");
    (void)Ostrafel({"create", mockup, "/redfish/v1"});
    ASSERT_NO_FATAL_FAILURE(RunBoth({"update", mockup, "/redfish/v1"})) << mockup;
  }
}

TEST_F(Mockups, AreCreatedOverEachOther) {
  if (std::getenv("REDFISH_MOCKUPS") == nullptr) GTEST_SKIP() << kSkipped;
  for (const std::string& mockup : Trees()) {
    ASSERT_NO_FATAL_FAILURE(RunBoth({"create", mockup, "/redfish/v1"})) << mockup;
  }
}

TEST_F(Mockups, UpdateEachOther) {
  if (std::getenv("REDFISH_MOCKUPS") == nullptr) GTEST_SKIP() << kSkipped;
  for (const std::string& mockup : Trees()) {
    ASSERT_NO_FATAL_FAILURE(RunBoth({"update", mockup, "/redfish/v1"})) << mockup;
  }
}

}  // namespace
