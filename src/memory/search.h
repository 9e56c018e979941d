// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_MEMORY_SEARCH_H_
#define OSTRAFEL_MEMORY_SEARCH_H_

#include <string>
#include <string_view>
#include <vector>

#include "memory/glob.h"

namespace ostrafel {

/// The part of name that a server would be sent.
inline std::string_view UpToNul(const std::string& name) { return name.c_str(); }

/// The names in a sorted map that match pattern, in their order. A lone "*" is no pattern to a
/// server: it lists even the empty name, which no star matches. Looks only at names that begin as
/// the pattern does.
template <typename Map>
[[nodiscard]] std::vector<std::string> MatchingNames(const Map& map, std::string_view pattern) {
  const std::string_view start = LiteralStart(pattern);
  std::vector<std::string> names;
  for (auto entry = map.lower_bound(start); entry != map.end(); ++entry) {
    const std::string& name = entry->first;
    if (name.compare(0, start.size(), start) != 0) break;
    if (pattern == "*" || MatchesGlob(pattern, name)) names.push_back(name);
  }
  return names;
}

}  // namespace ostrafel

#endif  // OSTRAFEL_MEMORY_SEARCH_H_
