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
  void SetUp() override {
    const char* folder = std::getenv("REDFISH_MOCKUPS");
    if (folder == nullptr) GTEST_SKIP() << "REDFISH_MOCKUPS names no folder of Redfish trees";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      if (entry.is_directory()) trees.push_back(entry.path().string());
    }
    std::sort(trees.begin(), trees.end());
    ASSERT_FALSE(trees.empty()) << folder << " holds no tree";
  }

  std::vector<std::string> trees;
};

TEST_F(Mockups, AreCreatedAndUpdatedAsTheModelSays) {
  for (const std::string& mockup : trees) {
    (void)store.Run("FLUSHALL");
    ASSERT_NO_FATAL_FAILURE(RunBoth({"create", mockup, "/redfish/v1"})) << mockup;
    ASSERT_NO_FATAL_FAILURE(RunBoth({"update", mockup, "/redfish/v1"})) << mockup;
  }
}

TEST_F(Mockups, ReplaceAndUpdateEachOther) {
  for (const char* action : {"create", "update"}) {
    for (const std::string& mockup : trees) {
      ASSERT_NO_FATAL_FAILURE(RunBoth({action, mockup, "/redfish/v1"})) << mockup;
    }
  }
}

}  // namespace
