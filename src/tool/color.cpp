// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/color.h"

#include <unistd.h>

#include <array>
#include <cstdlib>

namespace ostrafel {

Step TakeColor(const std::string& text, Color* color) {
  constexpr std::array<Word<Color>, 3> kColors = {
      {{"auto", Color::kAuto}, {"always", Color::kAlways}, {"never", Color::kNever}}};
  return TakeWord("color", kColors, text, color);
}

bool HasColors(Color color) {
  if (color != Color::kAuto) return color == Color::kAlways;
  const auto value_of = [](const char* name) {
    const char* value = std::getenv(name);
    return std::string(value == nullptr ? "" : value);
  };
  return isatty(STDOUT_FILENO) != 0 && value_of("NO_COLOR").empty() && value_of("TERM") != "dumb";
}

std::string Colored(const std::string& text, const char* color) {
  return std::string("\033[") + color + "m" + text + "\033[0m";
}

}  // namespace ostrafel
