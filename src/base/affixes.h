// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_BASE_AFFIXES_H_
#define OSTRAFEL_BASE_AFFIXES_H_

#include <string_view>

namespace ostrafel {

/// True when text begins with start.
[[nodiscard]] inline bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

/// True when text ends with end.
[[nodiscard]] inline bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace ostrafel

#endif  // OSTRAFEL_BASE_AFFIXES_H_
