// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_GLOB_H_
#define OSTRAFEL_TESTS_MODEL_GLOB_H_

#include <string>

namespace model {

/// Tells whether the whole string matches a Redis glob pattern: `*` any run of bytes, `?` one byte,
/// `[...]` one byte of a set (single bytes and `a-z` ranges, in either order; `^` first negates;
/// a backslash takes the next byte as it is; a set that is never closed ends with the pattern),
/// a backslash the next byte itself (a last one stands for itself).
///
/// As in the server, the empty string matches the empty pattern only: not even `*` matches it. The
/// commands that list keys treat the lone pattern `*` as "no pattern"; that is their rule.
bool MatchesGlob(const std::string& pattern, const std::string& text);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_GLOB_H_
