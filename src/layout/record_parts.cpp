// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/record_parts.h"

#include <cstddef>

#include "layout/layout.h"

namespace ostrafel {

std::string MemberOfField(const std::string& key, std::string_view field) {
  for (const std::string_view marker : {ObjectMarker, ObjectRefMarker, ArrayMarker}) {
    if (field.substr(0, marker.size()) != marker) continue;
    const std::string_view rest = field.substr(marker.size());
    const std::size_t last = rest.rfind(' ');
    if (last == std::string_view::npos) break;
    const std::string start = DerivedKey(key, "");
    for (std::size_t blank = rest.find(' '); blank < last; blank = rest.find(' ', blank + 1)) {
      const std::string_view target = rest.substr(blank + 1);
      // Compared first, as a field may have many blanks.
      if (target.substr(0, start.size()) != start) continue;
      std::string name(rest.substr(0, blank));
      if (target == DerivedKey(key, name)) return name;
    }
    return std::string(rest.substr(0, last));
  }
  return std::string(field);
}

bool IsDerivedKey(std::string_view key) {
  return key.substr(0, InternalPrefix.size()) == InternalPrefix;
}

}  // namespace ostrafel
