// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Redis's glob patterns.
#ifndef OSTRAFEL_MEMORY_GLOB_H_
#define OSTRAFEL_MEMORY_GLOB_H_

#include <string>
#include <string_view>

namespace ostrafel {

/// True when pattern matches the whole string, as a Redis 7.0 server has it:
///
///   *       any bytes, or none
///   ?       one byte
///   [a-z_]  one byte of a class of bytes and ranges; [^a-z_] one that is not in it. A range may
///           stand the wrong way round, and any byte can end it, "]" and a backslash included. A
///           class that is not closed ends with the pattern.
///   \       the next byte as it is, in a class, too; a last backslash stands for itself
///
/// The empty string matches the empty pattern alone. Nothing matches a pattern with more than 1000
/// stars; stars side by side count as one, those at the end not at all.
[[nodiscard]] bool MatchesGlob(std::string_view pattern, std::string_view string);

/// The part of pattern before its first "*", "?", "[" or backslash: what it matches begins so.
[[nodiscard]] std::string_view LiteralStart(std::string_view pattern);

/// The pattern that matches this string only.
[[nodiscard]] std::string EscapeGlob(std::string_view string);

}  // namespace ostrafel

#endif  // OSTRAFEL_MEMORY_GLOB_H_
