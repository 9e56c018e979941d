// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "faults/failing_calls.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

#include "support/program.h"

namespace {

std::string FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// The library comes before the run-time library of the address sanitizer, which would refuse that.
std::string SanitizerOptions() {
  const std::string options = FromEnvironment("ASAN_OPTIONS");
  return options + (options.empty() ? "" : ":") + "verify_asan_link_order=0";
}

RunOptions Preload(const FailingCalls& failing, const std::string& report_path,
                   void (*in_child)()) {
  RunOptions options;
  options.environment = {{"LD_PRELOAD", OSTRAFEL_FAILING_CALLS_LIBRARY},
                         {"ASAN_OPTIONS", SanitizerOptions()},
                         {"OSTRAFEL_FAILING_CALL", failing.call},
                         {"OSTRAFEL_FAILING_INDEX", std::to_string(failing.first)},
                         {"OSTRAFEL_FAILING_MODE", failing.is_onwards ? "onwards" : "once"},
                         {"OSTRAFEL_FAILING_ERRNO", std::to_string(failing.error)},
                         {"OSTRAFEL_FAILING_REPORT", report_path}};
  options.in_child = in_child;
  return options;
}

}  // namespace

std::string Describe(const FailingCalls& failing) {
  if (failing.call.empty()) return "no failing call";
  return failing.call + " " + std::to_string(failing.first) +
         (failing.is_onwards ? " and all later ones" : "");
}

std::string Describe(const FailingRun& run) {
  std::ostringstream text;
  text << "status " << run.finished.status << " after " << run.elapsed.count() << " ms";
  if (!run.crash_module.empty()) {
    text << ", crash in " << run.crash_function << " of " << run.crash_module;
  }
  text << "\nstdout: " << run.finished.out << "\nstderr: " << run.finished.err;
  return text.str();
}

void FailingCallsTest::SetUp() {
  if (HasLauncher()) GTEST_SKIP() << "the library would be preloaded into the launcher";
  const FailingRun run = RunDirectly({}, {});
  if (run.counts.empty()) {
    ASSERT_NE(FromEnvironment("OSTRAFEL_PROGRAM"), "") << Describe(run);
    GTEST_SKIP() << "the library cannot be preloaded into a program for another machine";
  }
}

FailingRun FailingCallsTest::RunDirectly(const FailingCalls& failing,
                                         const std::vector<std::string>& arguments,
                                         void (*in_child)()) {
  return RunCommand(failing, ProgramCommand(arguments), in_child);
}

FailingRun FailingCallsTest::RunCommand(const FailingCalls& failing,
                                        const std::vector<std::string>& command,
                                        void (*in_child)()) {
  const RunOptions options = Preload(failing, ReportPath(), in_child);
  const auto start = std::chrono::steady_clock::now();
  return Complete(RunProgram(command, options), start);
}

FailingRun FailingCallsTest::RunRecorded(const FailingCalls& failing,
                                         const std::vector<std::string>& arguments) {
  const RunOptions options = Preload(failing, ReportPath(), nullptr);
  const auto start = std::chrono::steady_clock::now();
  return Complete(Ostrafel(arguments, options), start);
}

FailingRun FailingCallsTest::Complete(const Finished& finished,
                                      std::chrono::steady_clock::time_point start) {
  FailingRun run;
  run.finished = finished;
  run.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - start);
  std::ifstream report(ReportPath());
  std::string name;
  while (report >> name) {
    if (name == "crash") {
      report >> run.crash_module >> run.crash_function;
    } else {
      report >> run.counts[name];
    }
  }
  report.close();
  (void)std::filesystem::remove(ReportPath());
  return run;
}
