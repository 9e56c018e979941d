// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_PERFORMANCE_COUNTED_RUN_H_
#define OSTRAFEL_TESTS_PERFORMANCE_COUNTED_RUN_H_

#include <string>

/// The command that runs a program under callgrind, to be set as OSTRAFEL_LAUNCHER, so that equal
/// runs count equal instructions: with an environment of its own, the library at seed_library
/// preloaded (see fixed_seed.cpp), and those variants of the functions of libc that need nothing
/// but SSE2, which every x86-64 processor has. The paths must hold no blanks.
std::string CountingLauncher(const std::string& seed_library, const std::string& output_path);

/// The instructions that callgrind's output file sums up. Throws std::runtime_error when it has no
/// such line.
long long CountedInstructions(const std::string& output_path);

#endif  // OSTRAFEL_TESTS_PERFORMANCE_COUNTED_RUN_H_
