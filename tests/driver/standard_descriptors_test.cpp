// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "driver/standard_descriptors.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <initializer_list>

namespace ostrafel {

namespace {

constexpr int kRefused = 8;

bool IsNullDevice(int descriptor) {
  struct stat status = {};
  struct stat null_device = {};
  return fstat(descriptor, &status) == 0 && stat("/dev/null", &null_device) == 0 &&
         S_ISCHR(status.st_mode) && status.st_rdev == null_device.st_rdev;
}

// In a process of its own: ends with a bit for each standard descriptor that is the null device, or
// with kRefused when the call reports a failure.
[[noreturn]] void CloseAndOccupy(std::initializer_list<int> closed) {
  for (const int descriptor : closed) (void)close(descriptor);
  if (!OccupyStandardDescriptors()) _exit(kRefused);
  int null_devices = 0;
  for (const int descriptor : {0, 1, 2}) {
    if (IsNullDevice(descriptor)) null_devices |= 1 << descriptor;
  }
  _exit(null_devices);
}

// Standard input and output as a person has them, which a test may not.
void OpenAll() {
  const int anything = open("/", O_RDONLY | O_CLOEXEC);
  (void)dup2(anything, STDIN_FILENO);
  (void)dup2(anything, STDOUT_FILENO);
}

TEST(StandardDescriptors, OpenOnesAreLeftAlone) {
  EXPECT_EXIT((OpenAll(), CloseAndOccupy({})), testing::ExitedWithCode(0), "");
}

TEST(StandardDescriptors, EachClosedOneLeadsToTheNullDevice) {
  EXPECT_EXIT((OpenAll(), CloseAndOccupy({0})), testing::ExitedWithCode(1), "");
  EXPECT_EXIT((OpenAll(), CloseAndOccupy({1})), testing::ExitedWithCode(2), "");
  EXPECT_EXIT((OpenAll(), CloseAndOccupy({2})), testing::ExitedWithCode(4), "");
  EXPECT_EXIT((OpenAll(), CloseAndOccupy({0, 2})), testing::ExitedWithCode(5), "");
  EXPECT_EXIT((OpenAll(), CloseAndOccupy({0, 1, 2})), testing::ExitedWithCode(7), "");
}

// With no descriptor left to open, as with no /dev at all.
TEST(StandardDescriptors, AreReportedWhenTheNullDeviceCannotBeOpened) {
  const auto close_one_without_a_way_to_open_it = [](int descriptor) {
    const rlimit none = {0, 0};
    (void)setrlimit(RLIMIT_NOFILE, &none);
    CloseAndOccupy({descriptor});
  };
  EXPECT_EXIT(close_one_without_a_way_to_open_it(1), testing::ExitedWithCode(kRefused),
              "^/dev/null: Too many open files\n$");
  EXPECT_EXIT(close_one_without_a_way_to_open_it(2), testing::ExitedWithCode(kRefused), "^$");
}

TEST(StandardDescriptors, AreEnoughWhenTheNullDeviceIsNotNeeded) {
  const auto take_every_descriptor_away = [] {
    OpenAll();
    const rlimit none = {0, 0};
    (void)setrlimit(RLIMIT_NOFILE, &none);
    CloseAndOccupy({});
  };
  EXPECT_EXIT(take_every_descriptor_away(), testing::ExitedWithCode(0), "");
}

}  // namespace

}  // namespace ostrafel
