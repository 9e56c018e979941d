// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "base/equals_ignore_case.h"

#include <gtest/gtest.h>

namespace ostrafel {

namespace {

TEST(EqualsIgnoreCase, ComparesLettersWithoutTheirCase) {
  const struct {
    const char* a;
    const char* b;
    bool is_equal;
  } cases[] = {
      {"create", "create", true},   {"CREATE", "create", true},
      {"uPdAtE", "update", true},   {"", "", true},
      {"creates", "create", false}, {"creat", "create", false},
      {"", "create", false},        {"update", "", false},
      {"create", "update", false},  {"\xC4", "\xE4", false},  // not letters in the C locale
      {"cre ate", "cre ate", true}, {"[", "{", false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(EqualsIgnoreCase(c.a, c.b), c.is_equal) << c.a << " " << c.b;
}

}  // namespace

}  // namespace ostrafel
