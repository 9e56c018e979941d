// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/color.h"

#include <gtest/gtest.h>

#include "support/scoped_variable.h"

namespace ostrafel {

namespace {

TEST(Colors, AreShownAsIsSaid) {
  const ScopedVariable no_color("NO_COLOR", "1");
  EXPECT_TRUE(HasColors(Color::kAlways));
  EXPECT_FALSE(HasColors(Color::kNever));
}

TEST(Colors, BeginAndEndWithTheText) {
  EXPECT_EQ(Colored("text", kRed), "\033[1;31mtext\033[0m");
  EXPECT_EQ(Colored("", kBold), "\033[1m\033[0m");
}

}  // namespace

}  // namespace ostrafel
