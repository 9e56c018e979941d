// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_SUPPORT_REPEATED_H_
#define OSTRAFEL_TESTS_SUPPORT_REPEATED_H_

#include <cstddef>
#include <string>

/// The string so many times in a row.
inline std::string Repeated(const std::string& text, std::size_t count) {
  std::string all;
  all.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

#endif  // OSTRAFEL_TESTS_SUPPORT_REPEATED_H_
