// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/record_parts.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "layout/layout.h"

namespace ostrafel {

namespace {

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// The member's name in what follows the marker of a record in the hash at key; nothing when there
// is no target.
std::optional<std::string> NameInRecord(const std::string& key, std::string_view rest) {
  const std::string start = DerivedKey(key, "");
  std::size_t first_key = std::string_view::npos;  // the first blank that a key follows
  for (std::size_t blank = rest.find(' '); blank != std::string_view::npos;
       blank = rest.find(' ', blank + 1)) {
    const std::string_view target = rest.substr(blank + 1);
    if (first_key == std::string_view::npos && (StartsWith(target, "/") || IsDerivedKey(target))) {
      first_key = blank;
    }
    // Compared first, as a field may have many blanks.
    if (!StartsWith(target, start)) continue;
    std::string name(rest.substr(0, blank));
    if (target == DerivedKey(key, name)) return name;
  }
  const std::size_t end = std::min(first_key, rest.rfind(' '));
  if (end == std::string_view::npos) return std::nullopt;
  return std::string(rest.substr(0, end));
}

}  // namespace

std::string MemberOfField(const std::string& key, std::string_view field) {
  for (const std::string_view marker : {ObjectMarker, ObjectRefMarker, ArrayMarker}) {
    if (!StartsWith(field, marker)) continue;
    std::optional<std::string> name = NameInRecord(key, field.substr(marker.size()));
    if (name) return *std::move(name);
  }
  return std::string(field);
}

bool IsDerivedKey(std::string_view key) { return StartsWith(key, InternalPrefix); }

}  // namespace ostrafel
