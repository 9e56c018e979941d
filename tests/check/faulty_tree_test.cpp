// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The tree of examples/faulty, in which each folder is named after the rule that finds its fault.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>

#include "check/check_fixture.h"

namespace ostrafel {

namespace {

class FaultyTree : public CheckTest {
 protected:
  FaultyTree() {
    const std::string tree = directory.MakeFolder("tree");
    std::filesystem::copy(OSTRAFEL_SOURCE_DIR "/examples/faulty", tree,
                          std::filesystem::copy_options::recursive);
    // Not in the sources, as archives and packages do not like links that lead nowhere.
    const std::string folder = directory.MakeFolder("tree/load-unreadable");
    std::filesystem::create_symlink("none.json", folder + "/index.json");
  }
};

TEST_F(FaultyTree, HasOneFaultForEachRule) {
  EXPECT_EQ(
      Found(""),
      (Lines{
          "update-slow -",
          "key-blank key-blank/index.json:7:3 /Fan Speed",
          "  key-blank/index.json:6:3 /Fan",
          "key-case key-case/index.json:7:3 /STATUS",
          "  key-case/index.json:6:3 /Status",
          "key-claimed-twice key-claimed-twice/index.json:7:18 /Oem/@odata.id",
          "  key-claimed-twice/index.json:2:16 /@odata.id",
          "key-glob key-glob/index.json:6:3 /Fan[0]",
          "key-not-path key-not-path/index.json:2:16 /@odata.id",
          "key-outside-uri key-outside-uri/index.json:6:24 /Oem/@odata.id",
          "key-trailing-slash key-trailing-slash/index.json:2:16 /@odata.id",
          "link-dangling link-dangling/index.json:6:24 /Fan/@odata.id",
          "link-fragment link-fragment/index.json:6:24 /Fan/@odata.id",
          "link-repeated link-repeated/index.json:8:19 /Fans/1/@odata.id",
          "  link-repeated/index.json:7:19 /Fans/0/@odata.id",
          "link-uri link-uri/index.json:6:20 /DataSourceUri",
          "load-id-type load-id-type/index.json:7:27 /Oem/Lost/@odata.id",
          "load-include load-include/index.json:6:13 /&&File",
          "load-key-type load-key-type/index.json:7:12 /~1Fans",
          "  load-key-type/index.json:6:11 /Fans",
          "load-lost-member load-lost-member/index.json:6:23 /Status/State",
          "  load-lost-member/index.json:7:24 /~1Status/State",
          "load-not-object load-not-object/index.json:1:1 ",
          "load-syntax load-syntax/index.json:3:12",
          "load-unreadable load-unreadable/index.json",
          R"(redfish-action-target redfish-action-target/index.json:7:34 /Actions/#Example.Reset/target)",
          "redfish-count redfish-count/index.json:7:26 /Members@odata.count",
          "redfish-error-body redfish-error-body/index.json:2:12 /error",
          "redfish-member-id redfish-member-id/index.json:7:19 /Fans/0/@odata.id",
          "redfish-not-member redfish-not-member/1/index.json:1:1 ",
          "  redfish-not-member/index.json:6:14 /Members",
          "redfish-orphan redfish-orphan/index.json:1:1 ",
          "redfish-required redfish-required/index.json:1:1 ",
          "store-duplicate-member store-duplicate-member/index.json:7:3 /State",
          "  store-duplicate-member/index.json:6:3 /State",
          "store-integer-clamped store-integer-clamped/index.json:6:12 /Bytes",
          "store-real-rounded store-real-rounded/index.json:6:14 /Seconds",
          "store-reserved-type store-reserved-type/index.json:6:13 /&&ETag",
          "update-loses update-loses/index.json:6:17 /Fans~1Extra",
          "  update-loses/index.json:74:11 /Fans"}));
}

TEST_F(FaultyTree, IsNotFoundUnderAnotherName) {
  file_name = "other.json";
  EXPECT_EQ(Found(""), (Lines{"load-nothing -", "load-unreadable load-unreadable/index.json"}));
}

TEST_F(FaultyTree, LeavesNoRuleOut) {
  Findings findings = Check();
  file_name = "other.json";
  for (Finding& finding : Check()) findings.push_back(finding);
  std::set<std::string> found;
  for (const Finding& finding : findings) found.insert(RuleOf(finding.rule).name);
  for (const Rule& rule : Rules()) EXPECT_EQ(found.count(rule.name), 1U) << rule.name;
}

TEST_F(FaultyTree, NamesTheRuleInTheFolderOfEachFault) {
  for (const Finding& finding : Check()) {
    const std::string& path = finding.place.path;
    if (path.empty()) continue;  // of the tree as a whole
    EXPECT_EQ(path.substr(0, path.find('/')), RuleOf(finding.rule).name);
  }
}

}  // namespace

}  // namespace ostrafel
