// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What the fuzz targets share.
#ifndef OSTRAFEL_TESTS_FUZZ_FUZZ_TARGET_H_
#define OSTRAFEL_TESTS_FUZZ_FUZZ_TARGET_H_

#include <string>
#include <string_view>
#include <vector>

#include "fuzz/machine.h"

/// Each target's own: plays one input and aborts when something is wrong (ReportDifference). What
/// it allocates is in the arena and must not outlive the call.
void TestOneInput(std::string_view input);

/// Parts the records of an input.
inline constexpr char kRecordSeparator = '\x1E';

/// The records of an input, at least one. They point into it.
std::vector<std::string_view> SplitRecords(std::string_view input);

/// Runs the whole program on the machine, from the state of a new process; only what it knows of
/// the connection (connection_state.h) stays. arguments come without the program's name. Returns
/// the status as the shell sees it.
int RunProgram(Machine* machine, const std::vector<std::string>& arguments);

#endif  // OSTRAFEL_TESTS_FUZZ_FUZZ_TARGET_H_
