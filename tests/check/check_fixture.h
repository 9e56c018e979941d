// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A tree of the test's own, and what the rules find in it.
#ifndef OSTRAFEL_TESTS_CHECK_CHECK_FIXTURE_H_
#define OSTRAFEL_TESTS_CHECK_CHECK_FIXTURE_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "check/finding.h"
#include "support/temp_directory.h"

namespace ostrafel {

class CheckTest : public ::testing::Test {
 protected:
  /// Writes a file of the tree, by its path below the top folder.
  void Write(const std::string& path, const std::string& text);

  /// Writes a file below the include directory.
  void Include(const std::string& name, const std::string& text);

  /// What all rules, those included that are off by default, find in the tree, with positions.
  /// Paths of the tree are relative to it; those of included files begin with "www/".
  Findings Check();

  /// Those findings whose rule's name begins so, as lines "rule path:line:column pointer", in
  /// order. Related places follow, indented by two blanks, without a rule.
  std::vector<std::string> Found(const std::string& rules);

  /// The same without lines and columns.
  std::vector<std::string> Pointers(const std::string& rules);

  /// The sentences of these findings, in order.
  std::vector<std::string> Sentences(const std::string& rules);

  std::string uri = "/redfish/v1";
  std::string file_name = "index.json";
  TempDirectory directory;  ///< Holds the top folder, "tree", and "www".
};

using Lines = std::vector<std::string>;

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_CHECK_CHECK_FIXTURE_H_
