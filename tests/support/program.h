// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_SUPPORT_PROGRAM_H_
#define OSTRAFEL_TESTS_SUPPORT_PROGRAM_H_

#include <string>
#include <vector>

/// What a successful run prints.
inline constexpr const char* kSuccessLine = ">>> Ostrafel parsing successfully.\n";

/// The command that runs the program under test with these arguments. Two variables of the
/// environment change it, so that one set of tests serves every build:
///   OSTRAFEL_PROGRAM   another binary than the one of this build, for example one for ARM
///   OSTRAFEL_LAUNCHER  a command, its words separated by spaces, that is given the binary and the
///                      arguments, for example "/usr/bin/qemu-arm -L /usr/arm-linux-gnueabihf"; in
///                      a build for another processor that is its emulator anyway
std::vector<std::string> ProgramCommand(const std::vector<std::string>& arguments);

/// The command that runs another program of the same build, likewise under a launcher.
std::vector<std::string> CommandOf(const std::string& program,
                                   const std::vector<std::string>& arguments);

/// True when the program runs under a launcher, which takes its own time, memory and system calls.
bool HasLauncher();

/// True when long has 64 bits in the program: its build need not be the tests' own.
bool ProgramHas64Bits();

#endif  // OSTRAFEL_TESTS_SUPPORT_PROGRAM_H_
