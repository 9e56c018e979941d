// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A machine without /dev/null.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include "system/system_fixture.h"

namespace {

class NoNullDevice : public SystemTest {
 protected:
  NoNullDevice() { tree.Write("index.json", R"({"A": 1})"); }
};

// In the child: an empty /dev of its own. This is the status where the machine refuses that, and
// none of the program's.
constexpr int kMountsRefused = 126;
constexpr char kNeedsMounts[] = "this machine refuses the private mounts that an empty /dev takes";

void EmptyDev() {
  if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount("none", "/dev", "tmpfs", 0, nullptr) != 0) {
    _exit(kMountsRefused);
  }
}

TEST_F(NoNullDevice, EndsARunThatWasStartedWithoutAStandardDescriptor) {
  RunOptions options;
  options.in_child = [] {
    EmptyDev();
    (void)close(STDIN_FILENO);
  };
  const Finished finished = Ostrafel({"create", tree.path(), "/redfish"}, options);
  if (finished.status == kMountsRefused) GTEST_SKIP() << kNeedsMounts;
  EXPECT_EQ(finished.err, "/dev/null: No such file or directory\n");
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.status, 255);
  EXPECT_EQ(recording.connections, 0);
}

TEST_F(NoNullDevice, DoesNotMatterToARunThatHasThemAll) {
  RunOptions options;
  options.in_child = EmptyDev;
  const Finished finished = Ostrafel({"create", tree.path(), "/redfish"}, options);
  if (finished.status == kMountsRefused) GTEST_SKIP() << kNeedsMounts;
  EXPECT_EQ(finished.out, kSuccessLine);
  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(store.Dump(), "hash | /redfish | A | 1\n");
}

}  // namespace
