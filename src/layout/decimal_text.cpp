// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/decimal_text.h"

#include <array>
#include <cstddef>

namespace ostrafel {

namespace {

constexpr std::array<char, 200> MakeDigitPairs() {
  std::array<char, 200> pairs = {};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}

// "00" to "99": two digits for each division.
constexpr std::array<char, 200> kDigitPairs = MakeDigitPairs();

}  // namespace

std::string DecimalText(std::int32_t value) {
  std::array<char, 11> digits = {};  // "-2147483648"
  std::size_t start = digits.size();
  // Unsigned, because the least value has no positive counterpart.
  auto rest = static_cast<std::uint32_t>(value);
  if (value < 0) rest = 0U - rest;
  while (rest >= 100) {
    const std::size_t pair = rest % 100 * std::size_t{2};
    rest /= 100;
    digits[--start] = kDigitPairs[pair + 1];
    digits[--start] = kDigitPairs[pair];
  }
  const std::size_t pair = rest * std::size_t{2};
  digits[--start] = kDigitPairs[pair + 1];
  if (rest >= 10) digits[--start] = kDigitPairs[pair];
  if (value < 0) digits[--start] = '-';
  return {digits.data() + start, digits.size() - start};
}

}  // namespace ostrafel
