// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What the guarded runs cost, and the file in the repository that says what they may cost.
#ifndef OSTRAFEL_TESTS_PERFORMANCE_FIGURES_H_
#define OSTRAFEL_TESTS_PERFORMANCE_FIGURES_H_

#include <map>
#include <string>

/// What one run costs. None of it depends on the clock.
struct Cost {
  long long instructions = 0;  ///< Of the program itself, not of the shell that it starts.
  long long commands = 0;
  long long round_trips = 0;
};

/// Name -> version of what changes the count of instructions although no source was changed: the
/// architecture, the compiler, the libraries and the tool that counts.
using Versions = std::map<std::string, std::string>;

/// What this machine has. What dpkg does not know is "unknown".
Versions MachineVersions();

/// The content of the file of figures.
struct Figures {
  std::map<std::string, Cost> runs;  ///< By the name of the run.
  Versions recorded_with;
};

/// Reads a file that WriteFigures wrote. Throws std::runtime_error when it is missing or damaged.
Figures ReadFigures(const std::string& path);

/// Writes the file; members in alphabetical order, so that a new record makes a small difference.
void WriteFigures(const std::string& path, const Figures& figures);

/// The tolerance for instructions, in percent, either way.
inline constexpr int kTolerance = 3;

/// By how many percent counted is above expected; negative when it is below.
double Excess(long long counted, long long expected);

/// Both sets of versions, a line for each name, those that differ marked.
std::string Describe(const Versions& recorded_with, const Versions& here);

#endif  // OSTRAFEL_TESTS_PERFORMANCE_FIGURES_H_
