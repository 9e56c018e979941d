// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/glob.h"

#include <gtest/gtest.h>

namespace model {
namespace {

TEST(MatchesGlob, FollowsTheServer) {
  const struct {
    const char* pattern;
    const char* text;
    bool matches;
  } cases[] = {
      {"", "", true},
      {"", "a", false},
      {"abc", "abc", true},
      {"abc", "abcd", false},
      {"abc", "ab", false},
      // Stars and question marks, slashes included.
      {"*", "a/b", true},
      {"/r/*", "/r/", true},
      {"/r/*", "/r", false},
      {"/r/*", "/r/a/b", true},
      {"/r/*", "&&/r/a", false},
      {"a*", "a", true},
      {"a**b*", "aXYb", true},
      {"*b*c", "abbcc", true},
      {"*b*c", "abbccd", false},
      {"a?c", "abc", true},
      {"a?c", "ac", false},
      {"*?", "a", true},
      // The empty text.
      {"*", "", false},
      {"**", "", false},
      {"?", "", false},
      // Sets.
      {"[abc]", "b", true},
      {"[abc]", "d", false},
      {"[a-c]x", "bx", true},
      {"[c-a]x", "bx", true},
      {"[^a-c]", "b", false},
      {"[^a-c]", "d", true},
      {"[a^]", "^", true},
      {"[]", "]", false},
      {"[^]", "x", true},
      {"[\\]]", "]", true},
      {"[\\]]", "\\", false},
      {"[a\\-c]", "b", false},
      {"[a\\-c]", "-", true},
      {"[a-]", "a", true},
      {"[a-]", "^", true},  // the range from "]" to "a", in a set that is never closed
      {"[a-]", "b", false},
      {"[-a]", "-", true},
      {"[abc", "c", true},
      {"[abc", "[", false},
      {"[", "[", false},
      {"[^", "[", true},
      {"[\\", "\\", true},
      // Backslashes.
      {"\\*", "*", true},
      {"\\*", "a", false},
      {"\\a", "a", true},
      {"a\\", "a\\", true},
      {"\\", "\\", true},
      {"a\\\\b", "a\\b", true},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(MatchesGlob(c.pattern, c.text), c.matches) << c.pattern << " against " << c.text;
  }
}

}  // namespace
}  // namespace model
