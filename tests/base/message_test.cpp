// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "base/message.h"

#include <gtest/gtest.h>

#include <string>

namespace ostrafel {

namespace {

std::string Printed(const char* text) {
  testing::internal::CaptureStderr();
  PrintMessage("%s|%d", text, 7);
  return testing::internal::GetCapturedStderr();
}

TEST(Messages, GoToStandardError) { EXPECT_EQ(Printed("100% of it"), "100% of it|7"); }

TEST(Messages, AreCollectedOnDemand) {
  std::string collected;
  Messages.collector = &collected;
  EXPECT_EQ(Printed("a"), "");
  EXPECT_EQ(Printed(std::string(100000, 'b').c_str()), "");
  PrintLengthError("too long");
  Messages = {};
  EXPECT_EQ(collected, "a|7" + std::string(100000, 'b') + "|7Failed to push data: too long.\n");
  EXPECT_EQ(Printed("c"), "c|7");
}

}  // namespace

}  // namespace ostrafel
