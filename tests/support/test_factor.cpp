// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/test_factor.h"

#include <charconv>
#include <cstdlib>
#include <stdexcept>
#include <string>

unsigned long TestFactor() {
  const char* value = std::getenv("OSTRAFEL_TEST_SEEDS");
  if (value == nullptr) return 1;
  const std::string text = value;
  const char* const end = text.data() + text.size();
  unsigned long factor = 0;
  // Takes neither spaces nor a sign.
  const auto [rest, error] = std::from_chars(text.data(), end, factor);
  if (error != std::errc() || rest != end || factor == 0) {
    throw std::invalid_argument("OSTRAFEL_TEST_SEEDS is no positive number: \"" + text + "\"");
  }
  return factor;
}
