// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/tree_removal.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "store/store_fixture.h"

namespace ostrafel {

namespace {

class TreeRemoval : public StoreTest {
 protected:
  void Fill(const std::initializer_list<const char*>& keys) {
    for (const char* key : keys) (void)store.Run(model::Command{"SET", key, "v"});
  }
};

TEST_F(TreeRemoval, AnEmptyStoreCostsThreeSearches) {
  EXPECT_EQ(RemoveResourceTree(server(), "/redfish/v1/Systems"), 1U);
  EXPECT_EQ(Sent(),
            "keys | /redfish/v1/Systems\n"
            "--\n"
            "keys | /redfish/v1/Systems/*\n"
            "--\n"
            "keys | &&/redfish/v1/Systems/*\n");
}

TEST_F(TreeRemoval, AUriThatEndsWithASlashIsSearchedWithoutAnother) {
  Fill({"/redfish/v1/", "/redfish/v1", "/redfish/v1/A", "&&/redfish/v1/", "&&/redfish/v1/A"});
  EXPECT_EQ(RemoveResourceTree(server(), "/redfish/v1/"), 1U);
  EXPECT_EQ(store.Dump(), "string | /redfish/v1 | v\n");
  const std::string sent = Sent();
  EXPECT_EQ(sent.substr(0, 66),
            "keys | /redfish/v1/\n"
            "--\n"
            "del | /redfish/v1/\n"
            "--\n"
            "keys | /redfish/v1/*\n");
  EXPECT_NE(sent.find("--\nkeys | &&/redfish/v1/*\n"), std::string::npos);
}

TEST_F(TreeRemoval, TheKeysOfOnePatternGoInOnePipelineBeforeTheNextSearch) {
  Fill({"/r", "/r/A", "&&/r/B"});
  EXPECT_EQ(RemoveResourceTree(server(), "/r"), 1U);
  EXPECT_EQ(Sent(),
            "keys | /r\n"
            "--\n"
            "del | /r\n"
            "--\n"
            "keys | /r/*\n"
            "--\n"
            "del | /r/A\n"
            "--\n"
            "keys | &&/r/*\n"
            "--\n"
            "del | &&/r/B\n");
}

TEST_F(TreeRemoval, EveryKeyHasACommandOfItsOwnInTheOrderFound) {
  recorder.Answer(1, "*3\r\n$1\r\nc\r\n$3\r\na b\r\n$1\r\nc\r\n");
  EXPECT_EQ(RemoveResourceTree(server(), "/r"), 1U);
  EXPECT_EQ(Sent(),
            "keys | /r\n"
            "--\n"
            "keys | /r/*\n"
            "--\n"
            "del | c\n"
            "del | a b\n"
            "del | c\n"
            "--\n"
            "keys | &&/r/*\n");
}

TEST_F(TreeRemoval, AnEmptyUriIsALogicError) {
  EXPECT_THROW((void)RemoveResourceTree(server(), ""), std::out_of_range);
}

}  // namespace

}  // namespace ostrafel
