// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/value_reading.h"

#include <gtest/gtest.h>
#include <jansson.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "document/document.h"
#include "layout/value_rendering.h"
#include "text/json_text.h"

namespace ostrafel {

namespace {

// The JSON text of what was read.
std::string JsonOf(const Scalar& scalar) {
  if (scalar.kind == ScalarKind::kLiteral) return scalar.text;
  std::string text;
  AppendJsonString(scalar.text, &text);
  return text;
}

// What becomes of a value that is stored, read, written and stored again must be what it was.
void ExpectBack(json_t* borrowed) {
  const std::string stored = RenderValue(borrowed);
  const Scalar scalar = ReadScalar(stored);
  ASSERT_EQ(scalar.kind, json_is_string(borrowed) ? ScalarKind::kString : ScalarKind::kLiteral)
      << stored;
  const std::string json = JsonOf(scalar);
  const Document again(json_loadb(json.data(), json.size(), JSON_DECODE_ANY, nullptr));
  ASSERT_NE(again, nullptr) << json;
  ASSERT_EQ(RenderValue(again.get()), stored);
}

void ExpectIntegerBack(std::int64_t number) {
  const Document value(json_integer(number));
  ASSERT_NO_FATAL_FAILURE(ExpectBack(value.get()));
}

void ExpectRealBack(double number) {
  if (!std::isfinite(number)) return;
  const Document value(json_real(number));
  ASSERT_NO_FATAL_FAILURE(ExpectBack(value.get()));
}

void ExpectUnknown(const std::string& stored) {
  const Scalar scalar = ReadScalar(stored);
  EXPECT_EQ(scalar.kind, ScalarKind::kUnknown) << stored;
  EXPECT_EQ(scalar.text, stored);
}

// Valid UTF-8 without a NUL, of few characters with a meaning and some of all sizes.
std::string RandomText(std::mt19937& generator) {
  const std::vector<std::string> pieces = {"\"",       "\\",           "a",    " ",
                                           "\n",       "\x01",         "\x7f", "&&",
                                           "\xC3\xA9", "\xE2\x82\xAC", "/",    "\xF0\x9F\x98\x80",
                                           "\\\"",     "true",         "5."};
  std::string text;
  for (std::size_t i = generator() % 8; i > 0; --i) text += pieces[generator() % pieces.size()];
  return text;
}

TEST(ReadScalar, ReadsStringsBack) {
  std::mt19937 generator(1);
  for (int round = 0; round < 5000; ++round) {
    const std::string text = RandomText(generator);
    const Document value(json_string(text.c_str()));
    ASSERT_NO_FATAL_FAILURE(ExpectBack(value.get()));
    ASSERT_EQ(ReadScalar(RenderValue(value.get())).text, text);
  }
}

TEST(ReadScalar, ReadsIntegersBack) {
  std::mt19937_64 generator(2);
  for (const std::int64_t number :
       {std::int64_t{0}, std::int64_t{999999999}, std::int64_t{1000000000}, std::int64_t{INT32_MAX},
        std::int64_t{INT32_MIN}, std::int64_t{INT32_MAX} + 1, std::int64_t{INT32_MIN} - 1,
        INT64_MAX, INT64_MIN}) {
    for (const std::int64_t near : {-1, 0, 1}) {
      const bool is_bound = number == INT64_MAX || number == INT64_MIN;
      ASSERT_NO_FATAL_FAILURE(ExpectIntegerBack(is_bound ? number : number + near));
    }
  }
  for (int round = 0; round < 5000; ++round) {
    const auto number = static_cast<std::int64_t>(generator());
    ASSERT_NO_FATAL_FAILURE(ExpectIntegerBack(number >> generator() % 64));
  }
}

TEST(ReadScalar, ReadsRealsBack) {
  using Limits = std::numeric_limits<double>;
  for (const double number :
       {0.0, 0.5, 5.0, 0.1, 1e20, 5e-7, 4.9e-7, 1e-9, 2.5e-6, 3000000000.5, 8589934591.9999995,
        17179869183.000001, Limits::max(), Limits::min(), Limits::denorm_min()}) {
    ASSERT_NO_FATAL_FAILURE(ExpectRealBack(number));
    ASSERT_NO_FATAL_FAILURE(ExpectRealBack(-number));
  }
  std::mt19937_64 generator(3);
  for (int round = 0; round < 5000; ++round) {
    const std::uint64_t bits = generator();
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    ASSERT_NO_FATAL_FAILURE(ExpectRealBack(number));
    // Halves, and more or less so many digits after the point as are kept.
    const double whole = static_cast<double>(bits >> (generator() % 64));
    ASSERT_NO_FATAL_FAILURE(ExpectRealBack(whole / 2));
    ASSERT_NO_FATAL_FAILURE(ExpectRealBack(-whole / 1e6));
    ASSERT_NO_FATAL_FAILURE(ExpectRealBack(whole / 3e6));
  }
}

TEST(ReadScalar, ReadsWordsBack) {
  for (const char* word : {"true", "false", "null"}) {
    const Scalar scalar = ReadScalar(word);
    EXPECT_EQ(scalar.kind, ScalarKind::kLiteral);
    EXPECT_EQ(scalar.text, word);
  }
}

TEST(ReadScalar, GivesRealsADigitAfterThePoint) {
  EXPECT_EQ(ReadScalar("5.").text, "5.0");
  EXPECT_EQ(ReadScalar("-0.").text, "-0.0");
  EXPECT_EQ(ReadScalar("0.000001").text, "0.000001");
  EXPECT_EQ(ReadScalar("-2147483648").text, "-2147483648");
}

TEST(ReadScalar, KnowsNothingOfWhatIsNeverStored) {
  for (const char* stored : {"",
                             "05",
                             "+1",
                             "1e3",
                             "0x1",
                             "-0",
                             "5.0",
                             "5.10",
                             ".5",
                             "nan",
                             "inf",
                             "-inf",
                             "-",
                             "--1",
                             "1-",
                             ".",
                             "-.",
                             "00",
                             "-05",
                             "1..",
                             "1.5.",
                             "1.0000001",
                             "0.0000001",
                             "2147483648",
                             "-2147483649",
                             "9223372036854775808",
                             "\"",
                             "\"a",
                             "a\"",
                             "a",
                             "\"\"\"",
                             "\"\\\"",
                             "\"\\a\"",
                             "\"a\"b\"",
                             " 1",
                             "1 ",
                             "\t1",
                             "1\n",
                             "1. ",
                             "1.\n",
                             " true",
                             "true ",
                             "TRUE",
                             "True",
                             "nul",
                             "nulls",
                             "{}",
                             "[]",
                             "{\"a\":1}",
                             "1,2",
                             "\\\"\\\"",
                             "'a'",
                             "1e999",
                             "5.e",
                             "\xC2\xA0",
                             "\xFF"}) {
    ExpectUnknown(stored);
  }
  ExpectUnknown(std::string("1\0", 2));
  ExpectUnknown(std::string("\0", 1));
  ExpectUnknown(std::string("true\0", 5));
  ExpectUnknown(std::string(1000, '7'));
  ExpectUnknown(std::string(1000, '7') + ".");
  ExpectUnknown(std::string(1000, '['));
}

TEST(ReadScalar, MeansWhatIsStoredOrKnowsNothing) {
  std::mt19937 generator(4);
  const std::string letters = "0123456789-+.eE\"\\ tn";
  std::size_t known = 0;
  for (int round = 0; round < 50000; ++round) {
    std::string stored;
    for (std::size_t i = generator() % 7; i > 0; --i) {
      stored += letters[generator() % (round % 2 == 0 ? letters.size() : 13)];
    }
    const Scalar scalar = ReadScalar(stored);
    if (scalar.kind == ScalarKind::kUnknown) continue;
    ++known;
    const std::string json = JsonOf(scalar);
    const Document value(json_loadb(json.data(), json.size(), JSON_DECODE_ANY, nullptr));
    ASSERT_EQ(RenderValue(value.get()), stored) << json;
  }
  EXPECT_GT(known, 1000U);
}

TEST(UnescapeText, TakesAwayWhatEscapeTextPutsIn) {
  std::mt19937 generator(5);
  for (int round = 0; round < 2000; ++round) {
    const std::string text = RandomText(generator);
    std::string escaped = text;
    EscapeText(escaped);
    ASSERT_EQ(UnescapeText(escaped), text);
  }
  EXPECT_EQ(UnescapeText(std::string("\0\xFF", 2)), std::string("\0\xFF", 2));
}

TEST(UnescapeText, HasNothingForWhatEscapeTextCannotMake) {
  for (const char* text : {"\"", "a\"b", "\\", "a\\", "\\n", "\\\\\\", "\\\\\"", "\\u0041"}) {
    EXPECT_EQ(UnescapeText(text), std::nullopt) << text;
  }
}

TEST(IsBound, IsTrueOfTheSmallestAndTheLargestInteger) {
  EXPECT_TRUE(IsBound("2147483647"));
  EXPECT_TRUE(IsBound("-2147483648"));
  for (const char* stored : {"2147483646", "-2147483647", "2147483647.", "\"2147483647\"",
                             "2147483648", "-2147483649", "", "0"}) {
    EXPECT_FALSE(IsBound(stored)) << stored;
  }
}

TEST(ReadForeignNumber, IsWhatJsonTakes) {
  for (const char* number :
       {"1e3", "3000000000", "5.10", "-0", "1E-7", "9223372036854775807", "7"}) {
    EXPECT_EQ(ReadForeignNumber(number), number);
  }
}

TEST(ReadForeignNumber, IsNothingOfWhatJsonDoesNotTake) {
  for (const char* text : {"", "05", "+1", "5.", ".5", "0x1", "nan", "inf", " 1", "1 ", "1\n", "-",
                           "1e999", "9223372036854775808", "true", "\"1\"", "[1]", "1,2"}) {
    EXPECT_EQ(ReadForeignNumber(text), std::nullopt) << text;
  }
  EXPECT_EQ(ReadForeignNumber(std::string("1\0", 2)), std::nullopt);
  EXPECT_EQ(ReadForeignNumber("1." + std::string(1000, '0')), std::nullopt);
}

}  // namespace

}  // namespace ostrafel
