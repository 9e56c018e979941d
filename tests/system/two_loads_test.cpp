// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Two loads of one tree at once, without a lock and with that of flock(1) on a folder.
#include <future>
#include <string>
#include <vector>

#include "system/system_fixture.h"

namespace {

class TwoLoads : public SystemTest {
 protected:
  TwoLoads() { tree.Write("index.json", R"({"A": [1, 2], "B": {"x": [3]}})"); }

  // The load beside the one that is recorded. It goes to the server itself.
  Finished LoadBeside(const std::vector<std::string>& lock = {}) const {
    RuntimeFiles files;
    files.unixsocket = ServerSocket();
    Publish(files);
    std::vector<std::string> command = lock;
    for (const std::string& word : ProgramCommand(create)) command.push_back(word);
    return RunProgram(command);
  }

  const std::vector<std::string> create{"create", tree.path(), "/r"};
  const std::string right =
      "list | &&/r/A | 1\n"
      "list | &&/r/A | 2\n"
      "hash | &&/r/B | &&Array x &&/r/B/x | \n"
      "list | &&/r/B/x | 3\n"
      "hash | /r | &&Array A &&/r/A | \n"
      "hash | /r | &&Object B &&/r/B | \n";
};

// STATUS 0 DOES NOT MEAN: Two loads run at once
TEST_F(TwoLoads, LeaveEveryArrayTwiceAndEachEndsWithStatusZero) {
  Load(create);
  ASSERT_EQ(store.Dump(), right);
  Finished other;
  // The first has removed the old tree, and has not yet written.
  plan = [&](Recorder& recorder) { recorder.Before(6, [&] { other = LoadBeside(); }); };
  Load(create);
  EXPECT_EQ(other.out, kSuccessLine);
  EXPECT_EQ(other.err, "");
  EXPECT_EQ(other.status, 0);
  EXPECT_EQ(Shown("redis-cli lrange KEY 0 -1", "&&/r/A"), "1\n2\n1\n2\n");
  EXPECT_EQ(store.Dump(),
            "list | &&/r/A | 1\n"
            "list | &&/r/A | 2\n"
            "list | &&/r/A | 1\n"
            "list | &&/r/A | 2\n"
            "hash | &&/r/B | &&Array x &&/r/B/x | \n"
            "list | &&/r/B/x | 3\n"
            "list | &&/r/B/x | 3\n"
            "hash | /r | &&Array A &&/r/A | \n"
            "hash | /r | &&Object B &&/r/B | \n");
}

// The same, as far as the lock lets the other come.
TEST_F(TwoLoads, WaitForOneAnotherWithALockOnAFolder) {
  const TempDirectory lock;
  const std::string folder = lock.path() + "/";  // the slash: no file is made in its place
  launcher = {"/usr/bin/flock", "--no-fork", folder};
  Load(create);
  Finished hasty;
  std::future<Finished> patient;
  plan = [&](Recorder& recorder) {
    recorder.Before(6, [&] {
      hasty = LoadBeside({"/usr/bin/flock", "--nonblock", folder});
      patient = std::async(std::launch::async, [&] {
        return LoadBeside({"/usr/bin/flock", folder});
      });
    });
  };
  Load(create);
  EXPECT_EQ(hasty.status, 1) << "the lock was not held";
  EXPECT_EQ(hasty.out, "");
  const Finished other = patient.get();
  EXPECT_EQ(other.out, kSuccessLine);
  EXPECT_EQ(other.err, "");
  EXPECT_EQ(other.status, 0);
  EXPECT_EQ(store.Dump(), right);
}

}  // namespace
