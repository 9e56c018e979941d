// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_CHECK_WITHOUT_POSITIONS_H_
#define OSTRAFEL_TESTS_CHECK_WITHOUT_POSITIONS_H_

#include <regex>
#include <string>
#include <vector>

namespace ostrafel {

/// The lines of CheckTest::Found less ":line:column": a pointer says where a value is, and tests of
/// their own that positions are right.
inline std::vector<std::string> WithoutPositions(std::vector<std::string> lines) {
  for (std::string& line : lines) line = std::regex_replace(line, std::regex(":\\d+:\\d+"), "");
  return lines;
}

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_CHECK_WITHOUT_POSITIONS_H_
