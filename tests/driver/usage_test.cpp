// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "driver/usage.h"

#include <gtest/gtest.h>

#include "driver/usage_text.h"

namespace ostrafel {

namespace {

TEST(Usage, IsPrintedOnStandardErrorAsItStands) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  PrintUsage();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), kUsageText);
}

}  // namespace

}  // namespace ostrafel
