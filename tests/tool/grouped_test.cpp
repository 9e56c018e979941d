// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/grouped.h"

#include <gtest/gtest.h>

#include "tool/quoted.h"

namespace ostrafel {

namespace {

TEST(Grouped, HasACommaBeforeEveryThreeDigits) {
  EXPECT_EQ(Grouped(0), "0");
  EXPECT_EQ(Grouped(999), "999");
  EXPECT_EQ(Grouped(1000), "1,000");
  EXPECT_EQ(Grouped(123456), "123,456");
  EXPECT_EQ(Grouped(18446744073709551615U), "18,446,744,073,709,551,615");
}

TEST(Counted, HasThePluralButForOne) {
  EXPECT_EQ(Counted(0, "key"), "0 keys");
  EXPECT_EQ(Counted(1, "key"), "1 key");
  EXPECT_EQ(Counted(7321, "file"), "7,321 files");
}

TEST(Quoted, IsInDoubleQuotes) { EXPECT_EQ(Quoted("a"), "\"a\""); }

}  // namespace

}  // namespace ostrafel
