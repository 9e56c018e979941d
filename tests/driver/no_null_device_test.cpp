// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// In this process, where a test of other processes only sees how they end.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <string>

#include "driver/standard_descriptors.h"

namespace ostrafel {

namespace {

// Closes a descriptor and lets no other be opened while it lives.
class WithoutDescriptor {
 public:
  explicit WithoutDescriptor(int descriptor)
      : descriptor_(descriptor), saved_(fcntl(descriptor, F_DUPFD_CLOEXEC, 3)) {
    (void)getrlimit(RLIMIT_NOFILE, &limit_);
    const rlimit none = {0, limit_.rlim_max};
    (void)close(descriptor_);
    (void)setrlimit(RLIMIT_NOFILE, &none);
  }
  ~WithoutDescriptor() {
    (void)setrlimit(RLIMIT_NOFILE, &limit_);
    if (saved_ < 0) return;
    (void)dup2(saved_, descriptor_);
    (void)close(saved_);
  }
  WithoutDescriptor(const WithoutDescriptor&) = delete;
  WithoutDescriptor& operator=(const WithoutDescriptor&) = delete;

 private:
  const int descriptor_;
  const int saved_;
  rlimit limit_ = {};
};

TEST(NoNullDevice, IsReportedForAClosedDescriptor) {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO}) {
    testing::internal::CaptureStderr();
    bool is_occupied = true;
    {
      const WithoutDescriptor closed(descriptor);
      is_occupied = OccupyStandardDescriptors();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "/dev/null: Too many open files\n");
    EXPECT_FALSE(is_occupied) << descriptor;
  }
}

}  // namespace

}  // namespace ostrafel
