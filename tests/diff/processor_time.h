// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_DIFF_PROCESSOR_TIME_H_
#define OSTRAFEL_TESTS_DIFF_PROCESSOR_TIME_H_

#include <ctime>

namespace ostrafel {

/// The seconds that a call of function takes this process: what else the machine does, and what
/// is waited for, does not count.
template <typename Function>
double ProcessorTimeOf(const Function& function) {
  const std::clock_t start = std::clock();
  function();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// Ten times as much may take so many times as long: what grows with the square takes a hundred
/// times as long, on any machine.
inline constexpr double kLinear = 40;

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_DIFF_PROCESSOR_TIME_H_
