// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The test's side of the preloaded library: interposer/plan.h.
#ifndef OSTRAFEL_TESTS_FAULTS_FAILING_CALLS_H_
#define OSTRAFEL_TESTS_FAULTS_FAILING_CALLS_H_

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "support/process.h"
#include "system/system_fixture.h"

/// Which calls are to fail: those of one name, from the first-th on (counted from 0).
struct FailingCalls {
  std::string call;  ///< As in interposer/plan.cpp; empty: every call does what it should.
  unsigned long first = 0;
  bool is_onwards = false;  ///< All later ones, too.
  int error = 0;            ///< Its errno; 0: one that the call really fails with.
};

/// How a run with a failing call ended.
struct FailingRun {
  Finished finished;
  std::chrono::milliseconds elapsed = {};
  std::map<std::string, unsigned long> counts;  ///< How many calls of each name there were.
  std::string crash_module;    ///< Where the process crashed or was aborted, if it was.
  std::string crash_function;  ///< The innermost function of that module with a name.
};

/// Text for the message of a failed assertion.
std::string Describe(const FailingCalls& failing);
std::string Describe(const FailingRun& run);

/// Runs with failing calls. Skips its tests where the library cannot be preloaded.
class FailingCallsTest : public SystemTest {
 protected:
  void SetUp() override;

  /// Runs the program with these arguments against the server that the runtime files lead to.
  FailingRun RunDirectly(const FailingCalls& failing, const std::vector<std::string>& arguments,
                         void (*in_child)() = nullptr);

  /// Likewise, through the Recorder: what was sent is then in recording.
  FailingRun RunRecorded(const FailingCalls& failing, const std::vector<std::string>& arguments);

  /// Runs another program: the first word of the command.
  FailingRun RunCommand(const FailingCalls& failing, const std::vector<std::string>& command,
                        void (*in_child)() = nullptr);

 private:
  FailingRun Complete(const Finished& finished, std::chrono::steady_clock::time_point start);
  std::string ReportPath() const { return reports_.path("calls"); }

  TempDirectory reports_;
};

#endif  // OSTRAFEL_TESTS_FAULTS_FAILING_CALLS_H_
