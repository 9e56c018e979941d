// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What the companions have in common as programs: how they run, and how they tell trouble.
#ifndef OSTRAFEL_TOOL_TOOL_H_
#define OSTRAFEL_TOOL_TOOL_H_

#include <exception>
#include <string>

namespace ostrafel {

/// The name that the program gives itself in messages. Each program defines its own.
extern const char* const ToolName;

/// The exit status of a program that could not do its work.
inline constexpr int kTrouble = 2;

/// Prints "NAME: MESSAGE\n" on standard error, NAME being ToolName, controls of MESSAGE escaped.
void PrintTrouble(const std::string& message);

/// Prints what an exception says; of bad_alloc, that memory has run out.
void PrintFailure(const std::exception& error);

/// From now on, lets jansson go on where it gets no memory, as a program must that has something to
/// take away before it ends. What comes of jansson is then to be used only after CheckJsonMemory.
void SurviveJsonMemory();

/// Raises bad_alloc when jansson got no memory since SurviveJsonMemory.
void CheckJsonMemory();

/// Calls run with argc and argv and returns its result, the exit status. Before that, opens the
/// standard descriptors that are missing (ReserveStandardDescriptors) and lets jansson end the
/// process where it gets no memory, which it would tell as an error in a file. What run raises is
/// told, and gives kTrouble.
[[nodiscard]] int RunTool(int argc, char** argv, int (*run)(int argc, char** argv));

}  // namespace ostrafel

#endif  // OSTRAFEL_TOOL_TOOL_H_
