// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/member_order.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/affixes.h"
#include "layout/layout.h"

namespace ostrafel {

namespace {

constexpr std::array<std::string_view, 6> kFirst = {"@odata.type", "@odata.id", "@",
                                                    "Id",          "Name",      "Description"};

// Where the group of a name comes. "@" stands for all others that begin with it.
std::size_t GroupOf(std::string_view name) {
  const auto* place = std::find(kFirst.begin(), kFirst.end(), name);
  if (place == kFirst.end() && StartsWith(name, "@")) {
    place = std::find(kFirst.begin(), kFirst.end(), "@");
  }
  if (place != kFirst.end()) return static_cast<std::size_t>(place - kFirst.begin());
  return kFirst.size() + (StartsWith(name, InternalPrefix) ? 1 : 0);
}

}  // namespace

bool StandsBefore(std::string_view a, std::string_view b) {
  return std::pair(GroupOf(a), a) < std::pair(GroupOf(b), b);
}

}  // namespace ostrafel
