// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What is left of an export that something ended.
#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include "export/export_files_fixture.h"
#include "support/scripted_server.h"
#include "support/test_factor.h"

namespace {

namespace fs = std::filesystem;

using model::Command;

class InterruptedExport : public ExportFiles {
 protected:
  InterruptedExport() {
    for (int i = 0; i < 100; ++i) {
      const std::string number = std::to_string(i);
      (void)store.Run(Command{"HSET", "/r/" + number, "Number", number, "Text",
                              '"' + std::string(3000, 'x') + '"'});
    }
    EXPECT_EQ(Export({"--quiet", "/r", place.path("whole")}).status, 0);
    whole = ListingOf(place.path("whole"));
    Remember();
  }

  // Expects that what is in its place is as it should be.
  void ExpectWholeFiles() const {
    for (const auto& [path, content] : ListingOf(out)) {
      if (path.find(".ostrafel-export-") != std::string::npos) continue;
      const auto expected = whole.find(path);
      ASSERT_NE(expected, whole.end()) << path;
      ASSERT_EQ(content, expected->second) << path;
    }
  }

  Listing whole;
};

TEST_F(InterruptedExport, ASignalEndsTheProgramAndLeavesNothing) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    for (const std::size_t flight : {0U, 1U, 2U}) {
      plan = [&](Recorder& recorder) {
        recorder.Before(flight, [&] { (void)kill(recorded_process, signal); });
      };
      const Finished finished = RecordedExport({"/r", out});
      EXPECT_EQ(finished.out, "");
      EXPECT_EQ(finished.err, "");
      EXPECT_EQ(finished.status, 128 + signal);
      EXPECT_EQ(Difference(around, ListingOf(place.path())), "");
    }
  }
}

TEST_F(InterruptedExport, ASignalEndsAWaitForAServerThatSaysNothing) {
  const std::string socket = RuntimeDirectory() + "/silent.sock";
  ScriptedServer server(socket);
  server.AnswerCommand(0, "");
  RunOptions options;
  options.on_start = [&](int process) {
    server.Watch(process);
    while (!fs::exists(out)) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    (void)kill(process, SIGTERM);
  };
  const Finished finished =
      RunProgram(CommandOf(OSTRAFEL_EXPORT_PROGRAM, {"--socket", socket, "/r", out}), options);
  EXPECT_EQ(finished.err, "");
  EXPECT_EQ(finished.status, 128 + SIGTERM);
  EXPECT_EQ(Difference(around, ListingOf(place.path())), "");
}

TEST_F(InterruptedExport, ASignalThatIsIgnoredEndsNothing) {
  plan = [&](Recorder& recorder) {
    recorder.Before(1, [&] { (void)kill(recorded_process, SIGHUP); });
  };
  RunOptions options;
  options.in_child = [] { (void)signal(SIGHUP, SIG_IGN); };
  ExpectWritten(RecordedExport({"/r", out}, options), "103 resources", out);
}

TEST_F(InterruptedExport, AtAnyMomentASignalLeavesAllOrNothing) {
  std::mt19937 generator(7);
  unsigned long interrupted = 0;
  for (unsigned long i = 0; i < 15 * TestFactor(); ++i) {
    const int signal = i % 2 == 0 ? SIGTERM : SIGINT;
    const auto wait = std::chrono::microseconds(generator() % 20000);
    RunOptions options;
    options.on_start = [&](int process) {
      std::this_thread::sleep_for(wait);
      (void)kill(process, signal);
    };
    const Finished finished = Export({"/r", out}, options);
    if (finished.status == 128 + signal) {
      ++interrupted;
    } else {
      ASSERT_EQ(finished.status, 0) << finished.err;
    }
    const Listing left = ListingOf(out);
    ASSERT_EQ(Difference(left.empty() ? left : whole, left), "");
    ASSERT_EQ(Difference(around, Around()), "");
    fs::remove_all(out);
  }
  EXPECT_GT(interrupted, 0U);
}

TEST_F(InterruptedExport, AtAnyMomentAKillLeavesWholeFiles) {
  std::mt19937 generator(8);
  unsigned long killed = 0;
  for (unsigned long i = 0; i < 15 * TestFactor(); ++i) {
    const auto wait = std::chrono::microseconds(generator() % 20000);
    RunOptions options;
    options.on_start = [&](int process) {
      std::this_thread::sleep_for(wait);
      (void)kill(process, SIGKILL);
    };
    if (Export({"/r", out}, options).status != 0) ++killed;
    ASSERT_NO_FATAL_FAILURE(ExpectWholeFiles());
    ASSERT_EQ(Difference(around, Around()), "");
    fs::remove_all(out);
  }
  EXPECT_GT(killed, 0U);
}

}  // namespace
