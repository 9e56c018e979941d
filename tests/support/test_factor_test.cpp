// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/test_factor.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>

#include "support/scoped_variable.h"

namespace {

constexpr const char* kName = "OSTRAFEL_TEST_SEEDS";

TEST(TestFactor, IsOneWithoutTheVariable) {
  const ScopedVariable variable(kName, std::nullopt);
  EXPECT_EQ(TestFactor(), 1U);
}

TEST(TestFactor, IsTheVariablesNumber) {
  for (const unsigned long factor : {1UL, 10UL, 4294967295UL}) {
    const ScopedVariable variable(kName, std::to_string(factor));
    EXPECT_EQ(TestFactor(), factor);
  }
}

TEST(TestFactor, WhatIsNoPositiveDecimalNumberIsRefused) {
  for (const std::string text : {"", "0", "000", "-1", "+1", " 1", "1 ", "1x", "x", "0x10", "1.5",
                                 "1e3", "99999999999999999999"}) {
    const ScopedVariable variable(kName, text);
    EXPECT_THROW((void)TestFactor(), std::invalid_argument) << text;
  }
}

}  // namespace
