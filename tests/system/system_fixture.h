// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_SYSTEM_SYSTEM_FIXTURE_H_
#define OSTRAFEL_TESTS_SYSTEM_SYSTEM_FIXTURE_H_

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/program.h"
#include "support/recorder.h"
#include "support/sandbox.h"
#include "support/temp_directory.h"
#include "support/test_store.h"

/// Runs of the real program against the real server, through a Recorder that the runtime files lead
/// to. Store and include directory are empty at the start of every test.
class SystemTest : public testing::Test {
 protected:
  SystemTest();
  ~SystemTest() override;

  /// Runs the program with these arguments and keeps what it sent in recording. Checks what holds
  /// for every run: at most one connection, which the program itself closes once.
  Finished Ostrafel(const std::vector<std::string>& arguments, const RunOptions& options = {});

  /// Runs the program and expects success and nothing on standard error.
  void Load(const std::vector<std::string>& arguments);

  /// Writes a document into the test's tree and loads that file to the key, as Load does.
  void LoadDocument(const std::string& action, const std::string& document,
                    const std::string& key = "/r");

  /// Runs the program and expects status 255, nothing on standard output and this on standard
  /// error.
  void ExpectFailure(const std::vector<std::string>& arguments, const std::string& err);

  /// What a command of the manual prints in a shell in which redis-cli goes to the sandbox's
  /// server. In it, TREE stands for the test's tree and KEY for the key.
  std::string Shown(std::string command, const std::string& key = "/r",
                    const RunOptions& options = {}) const;

  /// The commands of the last run, as Describe writes flights.
  std::string Sent() const { return Describe(recording.flights); }

  TestStore store;
  TempDirectory tree;
  Recording recording;

  /// Called with the Recorder of each run before the program starts, for planned faults.
  std::function<void(Recorder&)> plan;
  /// A command that each run is a part of: a program with its arguments, which becomes the program
  /// under test without another process.
  std::vector<std::string> launcher;
  /// The runtime files of each run; their socket is the Recorder's unless the test publishes its
  /// own.
  bool publishes_socket = true;
};

#endif  // OSTRAFEL_TESTS_SYSTEM_SYSTEM_FIXTURE_H_
