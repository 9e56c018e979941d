// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/glob.h"

#include <algorithm>
#include <cstddef>

namespace model {
namespace {

// Reads the set that starts just after the "[" at `position`, moves `position` past the set and
// tells whether the byte is in it.
bool ByteIsInSet(const std::string& pattern, std::size_t& position, char byte) {
  bool negated = false;
  if (position < pattern.size() && pattern[position] == '^') {
    negated = true;
    ++position;
  }
  bool found = false;
  while (position < pattern.size() && pattern[position] != ']') {
    const std::size_t left = pattern.size() - position;
    if (pattern[position] == '\\' && left >= 2) {
      found = found || pattern[position + 1] == byte;
      position += 2;
    } else if (left >= 3 && pattern[position + 1] == '-') {
      // The third byte bounds the range whatever it is, a "]" included. Plain char, as the server
      // compares: the order of bytes beyond ASCII is the platform's.
      const char low = std::min(pattern[position], pattern[position + 2]);
      const char high = std::max(pattern[position], pattern[position + 2]);
      found = found || (low <= byte && byte <= high);
      position += 3;
    } else {
      found = found || pattern[position] == byte;
      ++position;
    }
  }
  if (position < pattern.size()) ++position;  // the "]"
  return found != negated;
}

bool RestMatches(const std::string& pattern, std::size_t position, const std::string& text,
                 std::size_t at) {
  if (position == pattern.size()) return at == text.size();
  if (pattern[position] == '*') {
    for (std::size_t end = at; end <= text.size(); ++end) {
      if (RestMatches(pattern, position + 1, text, end)) return true;
    }
    return false;
  }
  if (at == text.size()) return false;
  if (pattern[position] == '?') return RestMatches(pattern, position + 1, text, at + 1);
  if (pattern[position] == '[') {
    ++position;
    return ByteIsInSet(pattern, position, text[at]) && RestMatches(pattern, position, text, at + 1);
  }
  if (pattern[position] == '\\' && position + 1 < pattern.size()) ++position;
  return pattern[position] == text[at] && RestMatches(pattern, position + 1, text, at + 1);
}

}  // namespace

bool MatchesGlob(const std::string& pattern, const std::string& text) {
  if (text.empty()) return pattern.empty();
  return RestMatches(pattern, 0, text, 0);
}

}  // namespace model
