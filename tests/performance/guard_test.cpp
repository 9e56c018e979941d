// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The two runs that scripts/dev/guard counts. Prints the commands and the round trips of each, in
// the form of expected_costs; the launcher counts instructions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "faults/fault_fixture.h"
#include "support/program.h"
#include "support/sandbox.h"
#include "support/scoped_variable.h"
#include "support/temp_directory.h"

namespace {

namespace fs = std::filesystem;

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

class Guard : public FaultTest {
 protected:
  // Runs the program over the example tree, and returns what is then stored.
  model::Store Count(const std::string& action, const model::Store& store) {
    const ScopedVariable launcher("OSTRAFEL_LAUNCHER", std::getenv("OSTRAFEL_GUARD_LAUNCHER") +
                                                           ("/" + action + ".callgrind"));
    const FaultedRun run = Run({action, kTree, "/redfish/v1"}, store, nullptr);
    EXPECT_EQ(run.finished.out, kSuccessLine);
    EXPECT_EQ(run.finished.err, "");
    EXPECT_EQ(run.finished.status, 0);
    std::cout << action << ".commands " << model::CommandsOf(run.recording.flights).size() << "\n"
              << action << ".round_trips " << run.recording.flights.size() << "\n";
    return run.store;
  }

  // Below the one directory whose path is the same in every sandbox: the length of a path counts.
  static constexpr const char* kTree = "/usr/local/nginx/www/rackmount";
};

TEST_F(Guard, CreateAndUpdate) {
  const TempDirectory folder("/dev/shm");  // a tmpfs
  fs::copy(OSTRAFEL_SOURCE_DIR "/examples/www", kIncludeDirectory, fs::copy_options::recursive);
  CopyInOrder(OSTRAFEL_SOURCE_DIR "/examples/rackmount", folder.path());
  fs::create_directory_symlink(folder.path(), kTree);
  Count("update", Count("create", {}));
}

}  // namespace
