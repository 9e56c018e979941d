// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_SUPPORT_TEST_FACTOR_H_
#define OSTRAFEL_TESTS_SUPPORT_TEST_FACTOR_H_

/// OSTRAFEL_TEST_SEEDS, by which long tests are multiplied; 1 without it. Throws
/// std::invalid_argument when it is no positive decimal number, so that no test passes by doing
/// nothing.
unsigned long TestFactor();

#endif  // OSTRAFEL_TESTS_SUPPORT_TEST_FACTOR_H_
