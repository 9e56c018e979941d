// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Colors on a terminal.
#ifndef OSTRAFEL_TOOL_COLOR_H_
#define OSTRAFEL_TOOL_COLOR_H_

#include <string>

#include "tool/command_line.h"

namespace ostrafel {

enum class Color { kAuto, kAlways, kNever };

/// Takes the argument of --color: auto, always or never.
[[nodiscard]] Step TakeColor(const std::string& text, Color* color);

/// True when standard output is to have colors: always, or, with kAuto, when it is a terminal that
/// is not TERM=dumb and NO_COLOR is not set to anything.
[[nodiscard]] bool HasColors(Color color);

/// The parameters of ECMA-48's SGR sequence.
inline constexpr const char* kBold = "1";
inline constexpr const char* kRed = "1;31";
inline constexpr const char* kGreen = "1;32";
inline constexpr const char* kMagenta = "1;35";
inline constexpr const char* kCyan = "1;36";

/// The text in that color.
[[nodiscard]] std::string Colored(const std::string& text, const char* color);

}  // namespace ostrafel

#endif  // OSTRAFEL_TOOL_COLOR_H_
