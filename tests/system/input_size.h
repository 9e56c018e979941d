// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// How much is asked of the program under test, by what it is built with and run under.
#ifndef OSTRAFEL_TESTS_SYSTEM_INPUT_SIZE_H_
#define OSTRAFEL_TESTS_SYSTEM_INPUT_SIZE_H_

#include "support/program.h"
#include "support/test_factor.h"

/// True when the program is instrumented by the address sanitizer, as this test is then, too: it
/// takes many times the memory, the stack and the time.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif

/// The size for this program: the full one with OSTRAFEL_TEST_SEEDS at 10 or more, otherwise a
/// tenth, and less for a program that is slowed down by a sanitizer or a launcher. What is tested
/// stays the same.
inline int Scaled(int full) {
  if (kIsSanitized || HasLauncher()) return full / 20;
  return TestFactor() >= 10 ? full : full / 10;
}

#endif  // OSTRAFEL_TESTS_SYSTEM_INPUT_SIZE_H_
