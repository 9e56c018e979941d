// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_BASE_EQUALS_IGNORE_CASE_H_
#define OSTRAFEL_BASE_EQUALS_IGNORE_CASE_H_

namespace ostrafel {

/// True when a and b (NUL-terminated) have the same length and the same characters after tolower.
/// Two empty strings are equal.
[[nodiscard]] bool EqualsIgnoreCase(const char* a, const char* b);

}  // namespace ostrafel

#endif  // OSTRAFEL_BASE_EQUALS_IGNORE_CASE_H_
