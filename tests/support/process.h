// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Runs a program as a person would, and keeps what it printed.
#ifndef OSTRAFEL_TESTS_SUPPORT_PROCESS_H_
#define OSTRAFEL_TESTS_SUPPORT_PROCESS_H_

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

struct Finished {
  int status = -1;  ///< The exit status; 128 + the signal's number when a signal ended it.
  std::string out;
  std::string err;
};

struct RunOptions {
  /// A program that has not ended after this time is killed.
  std::chrono::seconds time_limit = std::chrono::minutes(1);
  /// Called with the process id as soon as the process exists.
  std::function<void(int process_id)> on_start;
  /// Variables that the program gets beside the test's own, or in their place.
  std::vector<std::pair<std::string, std::string>> environment;
  /// Run in the child before the program, for example to give up a privilege. Tests have threads,
  /// any of which may have held a lock when the child was made: this may call nothing that takes
  /// one.
  void (*in_child)() = nullptr;
};

/// Runs arguments[0] with the rest as its arguments, standard input empty, and waits for its end. A
/// program that takes too long is killed.
Finished RunProgram(const std::vector<std::string>& arguments, const RunOptions& options = {});

#endif  // OSTRAFEL_TESTS_SUPPORT_PROCESS_H_
