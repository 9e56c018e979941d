// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The trees that the project ships.
#include <filesystem>
#include <string>

#include "system/model_check.h"

namespace {

class Examples : public ModelCheckedTest {
 protected:
  Examples() {
    std::filesystem::copy(OSTRAFEL_SOURCE_DIR "/examples/www", kIncludeDirectory,
                          std::filesystem::copy_options::recursive);
  }
};

TEST_F(Examples, AreLoadedAndUpdatedAsTheModelSays) {
  const std::string rackmount = OSTRAFEL_SOURCE_DIR "/examples/rackmount";
  const std::string overlay = OSTRAFEL_SOURCE_DIR "/examples/rackmount-update";
  ASSERT_NO_FATAL_FAILURE(RunBoth({"create", rackmount, "/redfish/v1"}));
  const std::string created = store.Dump();
  ASSERT_NO_FATAL_FAILURE(RunBoth({"update", rackmount, "/redfish/v1"}));
  EXPECT_EQ(store.Dump(), created);
  ASSERT_NO_FATAL_FAILURE(RunBoth({"update", overlay, "/redfish/v1"}));
  const std::string updated = store.Dump();
  EXPECT_NE(updated, created);
  ASSERT_NO_FATAL_FAILURE(RunBoth({"update", overlay, "/redfish/v1"}));
  EXPECT_EQ(store.Dump(), updated);
  ASSERT_NO_FATAL_FAILURE(RunBoth({"create", rackmount, "/redfish/v1"}));
  EXPECT_EQ(store.Dump(), created);
}

}  // namespace
