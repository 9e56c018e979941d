// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The runs whose server is fuzzed.
#ifndef OSTRAFEL_TESTS_FUZZ_REPLY_RUNS_H_
#define OSTRAFEL_TESTS_FUZZ_REPLY_RUNS_H_

#include <cstddef>
#include <string>
#include <vector>

#include "fuzz/machine.h"

inline constexpr const char* kPassword = "secret word";

struct ReplyRun {
  std::vector<std::string> arguments;  ///< Without the program's name.
  const char* document = nullptr;
  bool has_password = false;
  bool breaks_at_end = false;
  std::size_t bytes_at_once = 1;
};

/// The run that the first byte of an input selects (replies_fuzzer.cpp says how).
ReplyRun SelectReplyRun(unsigned char selector);

/// A machine with the run's document.
Machine MachineOf(const ReplyRun& run);

/// Lets the run find its server without the server's files, as if it had read them.
void Connect(const ReplyRun& run);

#endif  // OSTRAFEL_TESTS_FUZZ_REPLY_RUNS_H_
