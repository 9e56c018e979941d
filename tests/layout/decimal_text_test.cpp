// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/decimal_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace ostrafel {

namespace {

TEST(DecimalText, IsTheShortestForm) {
  for (const std::int32_t value : {0,
                                   1,
                                   9,
                                   10,
                                   11,
                                   42,
                                   99,
                                   100,
                                   101,
                                   109,
                                   999,
                                   1000,
                                   12345,
                                   100000,
                                   9999999,
                                   2000000000,
                                   std::numeric_limits<std::int32_t>::max(),
                                   -1,
                                   -7,
                                   -10,
                                   -99,
                                   -100,
                                   -2000000001,
                                   std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_EQ(DecimalText(value), std::to_string(value));
  }
}

TEST(DecimalText, AgreesWithTheStandardLibraryUpToFiveDigits) {
  for (std::int32_t value = -99999; value <= 99999; ++value) {
    ASSERT_EQ(DecimalText(value), std::to_string(value));
  }
}

}  // namespace

}  // namespace ostrafel
