// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TOOL_GROUPED_H_
#define OSTRAFEL_TOOL_GROUPED_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace ostrafel {

/// The number in decimal, its digits in groups of three: "7,321".
[[nodiscard]] inline std::string Grouped(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t end = text.size(); end > 3; end -= 3) text.insert(end - 3, ",");
  return text;
}

/// "1 file", "7,321 files".
[[nodiscard]] inline std::string Counted(std::uint64_t count, const std::string& noun) {
  return Grouped(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace ostrafel

#endif  // OSTRAFEL_TOOL_GROUPED_H_
