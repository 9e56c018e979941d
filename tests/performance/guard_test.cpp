// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The program must not become slower unnoticed. Two runs are counted, not timed: instructions,
// commands and round trips are the same on a busy machine as on an idle one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "faults/fault_fixture.h"
#include "performance/counted_run.h"
#include "performance/figures.h"
#include "support/program.h"
#include "support/sandbox.h"
#include "support/scoped_variable.h"
#include "support/temp_directory.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kFiguresPath = OSTRAFEL_SOURCE_DIR "/tests/performance/expected.json";

std::vector<std::string> NamesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
  return names;
}

// Copies a tree so that every folder of the copy is listed in the order of its names: the order in
// which resources are loaded decides what an update has to ask for. tmpfs lists entries in the
// order in which they were made or, depending on the kernel, in the reverse one.
void CopyInOrder(const fs::path& from, const fs::path& to) {
  std::vector<std::string> names = NamesIn(from);
  std::sort(names.begin(), names.end());
  const auto make = [&](const std::string& name) {
    if (fs::is_directory(from / name)) {
      fs::create_directory(to / name);
    } else {
      fs::copy_file(from / name, to / name);
    }
  };
  std::for_each(names.rbegin(), names.rend(), make);
  if (NamesIn(to) != names) {
    for (const std::string& name : names) fs::remove(to / name);
    std::for_each(names.begin(), names.end(), make);
  }
  if (NamesIn(to) != names) throw std::runtime_error(to.string() + " has an order of its own");
  for (const std::string& name : names) {
    if (fs::is_directory(from / name)) CopyInOrder(from / name, to / name);
  }
}

// Runs the program over the example tree. The figures of a test that is told to record are written
// instead of being compared.
class Guard : public FaultTest {
 protected:
  Guard() {
    fs::copy(OSTRAFEL_SOURCE_DIR "/examples/www", kIncludeDirectory, fs::copy_options::recursive);
    CopyInOrder(OSTRAFEL_SOURCE_DIR "/examples/rackmount", folder_.path());
    fs::create_directory_symlink(folder_.path(), kTree);
  }

  void SetUp() override {
    ASSERT_STREQ(OSTRAFEL_BUILD_TYPE, "Release") << "the figures are those of a release build";
    ASSERT_STREQ(OSTRAFEL_INSTRUMENTATION, "") << "the figures are those of a plain build";
  }

  // Runs the program uncounted.
  model::Store StoreOfCreate() {
    const FaultedRun run = Run(Arguments("create"), {}, nullptr);
    EXPECT_EQ(run.finished.out, kSuccessLine);
    return run.store;
  }

  // Counts a run over this store and compares it with the figures, or records it.
  void Check(const std::string& action, const model::Store& store) {
    const Cost counted = Count(action, store);
    if (HasFailure()) return;
    if (std::getenv("OSTRAFEL_GUARD_UPDATE") != nullptr) {
      Record(action, counted);
    } else {
      Compare(action, counted, ReadFigures(kFiguresPath));
    }
  }

 private:
  // Below the one directory whose path is the same in every sandbox: the length of a path counts.
  static constexpr const char* kTree = "/usr/local/nginx/www/rackmount";

  TempDirectory folder_{"/dev/shm"};  // a tmpfs, which the sandbox's own directories need not be

  static std::vector<std::string> Arguments(const std::string& action) {
    return {action, kTree, "/redfish/v1"};
  }

  static std::string KeptOutput(const std::string& action) {
    return std::string(OSTRAFEL_GUARD_OUTPUT "/") + action + ".callgrind";
  }

  Cost Count(const std::string& action, const model::Store& store) {
    const std::string output = RuntimeDirectory() + "/callgrind.out";
    // A place without blanks in its path.
    const std::string seed = RuntimeDirectory() + "/fixed_seed.so";
    fs::copy_file(OSTRAFEL_FIXED_SEED_LIBRARY, seed, fs::copy_options::overwrite_existing);
    const ScopedVariable launcher("OSTRAFEL_LAUNCHER", CountingLauncher(seed, output));
    const FaultedRun run = Run(Arguments(action), store, nullptr);
    EXPECT_EQ(run.finished.out, kSuccessLine);
    EXPECT_EQ(run.finished.err, "");
    EXPECT_EQ(run.finished.status, 0);
    if (HasFailure()) return {};
    fs::create_directories(OSTRAFEL_GUARD_OUTPUT);
    fs::copy_file(output, KeptOutput(action), fs::copy_options::overwrite_existing);
    fs::remove(output);
    fs::remove(seed);
    const auto commands = model::CommandsOf(run.recording.flights).size();
    return {CountedInstructions(KeptOutput(action)), static_cast<long long>(commands),
            static_cast<long long>(run.recording.flights.size())};
  }

  static void Record(const std::string& action, const Cost& counted) {
    Figures figures = fs::exists(kFiguresPath) ? ReadFigures(kFiguresPath) : Figures();
    figures.runs[action] = counted;
    figures.recorded_with = MachineVersions();
    WriteFigures(kFiguresPath, figures);
    std::cout << "recorded for " << action << ": " << counted.instructions << " instructions, "
              << counted.commands << " commands, " << counted.round_trips << " round trips\n";
  }

  static void Compare(const std::string& action, const Cost& counted, const Figures& figures) {
    ASSERT_EQ(figures.runs.count(action), 1U) << "no figures for " << action;
    const Cost& expected = figures.runs.at(action);
    const Versions here = MachineVersions();
    const bool is_comparable = figures.recorded_with.count("architecture") == 1 &&
                               figures.recorded_with.at("architecture") == here.at("architecture");
    const double excess = Excess(counted.instructions, expected.instructions);

    std::ostringstream summary;
    summary << action << " of examples/rackmount: " << counted.instructions
            << " instructions, expected " << expected.instructions << " (" << std::showpos
            << std::fixed << std::setprecision(2) << excess << " %" << std::noshowpos << "); "
            << counted.commands << " commands, expected " << expected.commands << "; "
            << counted.round_trips << " round trips, expected " << expected.round_trips << "\n";
    std::cout << summary.str();

    const std::string advice =
        summary.str() + Describe(figures.recorded_with, here) + "What costs: callgrind_annotate " +
        KeptOutput(action) +
        "\nIf it is worth that, record new figures: scripts/dev/guard --update";
    EXPECT_TRUE(counted.commands == expected.commands &&
                counted.round_trips == expected.round_trips)
        << advice;
    if (!is_comparable) GTEST_SKIP() << "instructions were recorded for another processor";
    EXPECT_LE(excess, kTolerance) << advice;
    if (excess < -kTolerance) {
      std::cout << "Quicker than recorded; scripts/dev/guard --update keeps it so.\n";
    }
  }
};

TEST_F(Guard, ACreateOnAnEmptyStoreCostsNoMoreThanRecorded) { Check("create", {}); }

TEST_F(Guard, AnUpdateOfWhatIsStoredCostsNoMoreThanRecorded) { Check("update", StoreOfCreate()); }

}  // namespace
