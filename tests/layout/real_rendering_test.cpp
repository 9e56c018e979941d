// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Reals against arithmetic on decimal digits. A processor that calculates with more than the 64
// bits of a double (the x87 unit of 32-bit PCs) must store the same bytes as any other; the
// expectations are made of integers only, so that no such unit takes part in them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "document/document.h"
#include "layout/value_rendering.h"

namespace ostrafel {

namespace {

std::uint64_t Bits(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

double FromBits(std::uint64_t bits) {
  double value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

// number * factor^times in decimal digits.
std::string Product(std::uint64_t number, std::uint64_t factor, int times) {
  constexpr std::uint64_t kBase = 1000000000;
  std::vector<std::uint64_t> parts;  // nine digits each, the least first
  for (; number != 0; number /= kBase) parts.push_back(number % kBase);
  for (int i = 0; i < times; ++i) {
    std::uint64_t carry = 0;
    for (std::uint64_t& part : parts) {
      carry += part * factor;
      part = carry % kBase;
      carry /= kBase;
    }
    if (carry != 0) parts.push_back(carry);
  }
  std::string digits;
  for (const std::uint64_t part : parts) {
    const std::string text = std::to_string(part);
    digits.insert(0, std::string(9 - text.size(), '0').append(text));
  }
  return digits;
}

// Cuts the last digits off and rounds to the nearest, of two that are equally near to the even one.
std::string Rounded(const std::string& digits, std::size_t cut) {
  std::string kept = digits.substr(0, digits.size() - cut);
  const std::string rest = digits.substr(digits.size() - cut);
  const std::string half = "5" + std::string(cut - 1, '0');
  const bool is_odd = (kept.back() - '0') % 2 == 1;
  if (rest < half || (rest == half && !is_odd)) return kept;
  std::size_t last = kept.size() - 1;
  for (; kept[last] == '9'; --last) kept[last] = '0';
  ++kept[last];
  return kept;
}

// The double's exact value, rounded to six digits after the point, without zeros at its end.
std::string ExactText(double value) {
  constexpr std::size_t kPlaces = 6;
  const std::uint64_t bits = Bits(value);
  const int biased = static_cast<int>(bits >> 52 & 0x7FF);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << 52) - 1);
  const std::uint64_t significand = biased == 0 ? fraction : fraction | std::uint64_t{1} << 52;
  const int exponent = (biased == 0 ? 1 : biased) - 1075;

  // m / 2^k is m * 5^k with the point k digits from the right.
  std::string digits =
      exponent < 0 ? Product(significand, 5, -exponent) : Product(significand, 2, exponent);
  const std::size_t places = exponent < 0 ? static_cast<std::size_t>(-exponent) : 0;
  digits.insert(0, std::string(places + 2, '0'));  // one for the carry
  if (places > kPlaces) {
    digits = Rounded(digits, places - kPlaces);
  } else {
    digits.append(kPlaces - places, '0');
  }
  const std::size_t point = digits.size() - kPlaces;
  const std::size_t start = std::min(digits.find_first_not_of('0'), point - 1);
  std::string text = digits.substr(start, point - start) + "." + digits.substr(point);
  text.erase(text.find_last_not_of('0') + 1);
  return (bits >> 63 != 0 ? "-" : "") + text;
}

// Parses the double from as many digits as tell it from every other, and checks parser and
// renderer.
void ExpectExact(double value) {
  std::array<char, 40> buffer = {};
  (void)std::snprintf(buffer.data(), buffer.size(), "%.17g", value);
  std::string json = buffer.data();
  if (json.find_first_of(".e") == std::string::npos) json += ".0";
  json_error_t error;
  const Document array(json_loads(("[" + json + "]").c_str(), 0, &error));
  ASSERT_NE(array, nullptr) << json << ": " << error.text;
  const json_t* real = json_array_get(array.get(), 0);
  EXPECT_EQ(Bits(json_real_value(real)), Bits(value)) << json;
  EXPECT_EQ(RenderValue(real), ExactText(value)) << json;
}

TEST(ExactText, IsTheRoundedValue) {
  EXPECT_EQ(ExactText(0.0), "0.");
  EXPECT_EQ(ExactText(-0.0), "-0.");
  EXPECT_EQ(ExactText(1.0), "1.");
  EXPECT_EQ(ExactText(-0.5), "-0.5");
  EXPECT_EQ(ExactText(0.1), "0.1");
  EXPECT_EQ(ExactText(1e20), "100000000000000000000.");
  EXPECT_EQ(ExactText(0.0078125), "0.007812");  // 7.8125: a tie, 2 is even
  EXPECT_EQ(ExactText(0.0234375), "0.023438");  // a tie, 7 is odd
  EXPECT_EQ(ExactText(0.9999999), "1.");
  EXPECT_EQ(ExactText(5e-324), "0.");
}

TEST(RenderedReals, AreExactWhereTheSeventhPlaceIsATie) {
  for (int n = -2000; n <= 2000; ++n) ExpectExact(n / 128.0);
}

TEST(RenderedReals, AreExactInTheRangeOfMeasurements) {
  std::mt19937_64 random(1);  // NOLINT: the same numbers everywhere
  for (int i = 0; i < 3000; ++i) {
    // Any sign and significand, exponents from -40 to 40.
    const std::uint64_t exponent = 1023 - 40 + random() % 81;
    const std::uint64_t rest = random();
    ExpectExact(FromBits((rest & ~(std::uint64_t{0x7FF} << 52)) | exponent << 52));
  }
}

TEST(RenderedReals, AreExactFromTheSmallestToTheLargest) {
  std::mt19937_64 random(2);  // NOLINT: the same numbers everywhere
  for (std::uint64_t exponent = 0; exponent < 0x7FF; exponent += 7) {
    const std::uint64_t rest = random();
    ExpectExact(FromBits((rest & ~(std::uint64_t{0x7FF} << 52)) | exponent << 52));
  }
  ExpectExact(FromBits(1));
  ExpectExact(-FromBits((std::uint64_t{0x7FF} << 52) - 1));
}

}  // namespace

}  // namespace ostrafel
