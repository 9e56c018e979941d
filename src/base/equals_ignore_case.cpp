// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "base/equals_ignore_case.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace ostrafel {

bool EqualsIgnoreCase(const char* a, const char* b) {
  const std::string_view left(a);
  const std::string_view right(b);
  // Through unsigned char: tolower takes no negative value but EOF.
  const auto equal = [](unsigned char x, unsigned char y) {
    return std::tolower(x) == std::tolower(y);
  };
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), equal);
}

}  // namespace ostrafel
