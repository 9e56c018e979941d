// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/progress.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

namespace ostrafel {

namespace {

constexpr auto kAtOnce = std::chrono::seconds(0);

// What a line shows that is used so, until its end.
template <typename Use>
std::string Shown(bool is_wanted, ProgressLine::Clock::duration patience, const Use& use) {
  testing::internal::CaptureStderr();
  {
    ProgressLine line(is_wanted, patience);
    use(&line);
  }
  return testing::internal::GetCapturedStderr();
}

TEST(ProgressLine, IsShownAndTakenAway) {
  EXPECT_EQ(Shown(true, kAtOnce, [](ProgressLine* line) { line->Show("checked", 12000, 36051); }),
            "\rchecked 12,000 of 36,051 files\r                              \r");
}

TEST(ProgressLine, GroupsDigitsByThree) {
  const auto shown = [](std::size_t number) {
    const std::string all =
        Shown(true, kAtOnce, [&](ProgressLine* line) { line->Show("read", number, number); });
    return all.substr(0, all.find(" files"));
  };
  EXPECT_EQ(shown(0), "\rread 0 of 0");
  EXPECT_EQ(shown(999), "\rread 999 of 999");
  EXPECT_EQ(shown(1000), "\rread 1,000 of 1,000");
  EXPECT_EQ(shown(1234567), "\rread 1,234,567 of 1,234,567");
}

TEST(ProgressLine, IsNotShownWhereItIsNotWanted) {
  EXPECT_EQ(Shown(false, kAtOnce, [](ProgressLine* line) { line->Show("read", 1, 2); }), "");
}

TEST(ProgressLine, IsNotShownBeforeItsTime) {
  const auto hour = std::chrono::hours(1);
  EXPECT_EQ(Shown(true, hour, [](ProgressLine* line) { line->Show("read", 1, 2); }), "");
}

TEST(ProgressLine, IsNotShownMoreOftenThanAPersonReads) {
  EXPECT_EQ(Shown(true, kAtOnce,
                  [](ProgressLine* line) {
                    for (std::size_t i = 0; i < 5; ++i) line->Show("read", i, 9);
                  }),
            "\rread 0 of 9 files\r                 \r");
}

TEST(ProgressLine, CoversALongerLine) {
  EXPECT_EQ(Shown(true, kAtOnce,
                  [](ProgressLine* line) {
                    line->Show("read", 1000, 1000);
                    std::this_thread::sleep_for(std::chrono::milliseconds(150));
                    line->Show("read", 1, 2);
                    line->Erase();
                  }),
            "\rread 1,000 of 1,000 files\rread 1 of 2 files        \r                         \r");
}

}  // namespace

}  // namespace ostrafel
