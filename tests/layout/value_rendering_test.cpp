// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/value_rendering.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <string>

#include "document/document.h"

namespace ostrafel {

namespace {

// The rendering of one value, written as JSON.
std::string Render(const std::string& json) {
  json_error_t error;
  const Document array(json_loads(("[" + json + "]").c_str(), 0, &error));
  EXPECT_NE(array, nullptr) << json << ": " << error.text;
  return RenderValue(json_array_get(array.get(), 0));
}

struct Case {
  const char* json;
  const char* text;
};

TEST(RenderValue, QuotesStringsAndEscapesTwoCharacters) {
  const Case cases[] = {
      {R"("")", R"("")"},
      {R"("Chassis One")", R"("Chassis One")"},
      {R"("a\"b\\c")", R"("a\"b\\c")"},
      {R"("\\")", R"("\\")"},
      {R"("\"")", R"("\"")"},
      {R"("\\\"")", R"("\\\"")"},
      {R"("\n\t\u0001")", "\"\n\t\x01\""},
      {R"("\u00e9\ud83d\ude00")", "\"\xC3\xA9\xF0\x9F\x98\x80\""},
      {R"("\/")", "\"/\""},
      {R"(" %s ")", "\" %s \""},
  };
  for (const auto& c : cases) EXPECT_EQ(Render(c.json), c.text) << c.json;
}

TEST(RenderValue, TakesAStringUpToAnEmbeddedNul) {
  const Document value(json_stringn("ab\0cd", 5));
  EXPECT_EQ(RenderValue(value.get()), "\"ab\"");
}

TEST(RenderValue, WritesIntegersOf32BitsInDecimal) {
  const Case cases[] = {
      {"0", "0"},
      {"-0", "0"},
      {"7", "7"},
      {"-7", "-7"},
      {"10", "10"},
      {"100", "100"},
      {"2147483646", "2147483646"},
      {"2147483647", "2147483647"},
      {"2147483648", "2147483647"},
      {"3000000000", "2147483647"},
      {"9223372036854775807", "2147483647"},
      {"-2147483647", "-2147483647"},
      {"-2147483648", "-2147483648"},
      {"-2147483649", "-2147483648"},
      {"-3000000000", "-2147483648"},
      {"-9223372036854775808", "-2147483648"},
  };
  for (const auto& c : cases) EXPECT_EQ(Render(c.json), c.text) << c.json;
}

TEST(RenderValue, CutsTheTrailingZerosOfRealsAndKeepsThePoint) {
  const Case cases[] = {
      {"5.0", "5."},
      {"0.0", "0."},
      {"-0.0", "-0."},
      {"1.0", "1."},
      {"1.5", "1.5"},
      {"2.5", "2.5"},
      {"3.5", "3.5"},
      {"0.1", "0.1"},
      {"100.125", "100.125"},
      {"100.0", "100."},
      {"1e20", "100000000000000000000."},
      {"0.0000004", "0."},
      {"0.0000005", "0."},
      {"0.0000006", "0.000001"},
      {"-1.25", "-1.25"},
      {"3000000000.5", "3000000000.5"},
      {"1E-7", "0."},
  };
  for (const auto& c : cases) EXPECT_EQ(Render(c.json), c.text) << c.json;
}

TEST(RenderValue, HoldsTheLargestReal) {
  const Document value(json_real(-DBL_MAX));
  const std::string text = RenderValue(value.get());
  EXPECT_EQ(text.size(), 311U);  // a sign, 309 digits, the point
  EXPECT_EQ(text.substr(0, 8), "-1797693");
  EXPECT_EQ(text.back(), '.');
}

TEST(RenderValue, WritesTheLiteralsAsWords) {
  EXPECT_EQ(Render("true"), "true");
  EXPECT_EQ(Render("false"), "false");
  EXPECT_EQ(Render("null"), "null");
}

TEST(RenderValue, HasNoTextForWhatIsNotScalar) {
  EXPECT_EQ(Render("{}"), "");
  EXPECT_EQ(Render("{\"a\": 1}"), "");
  EXPECT_EQ(Render("[]"), "");
  EXPECT_EQ(Render("[1]"), "");
  EXPECT_EQ(RenderValue(nullptr), "");
}

TEST(ReplaceAll, NeverSearchesWhatItPutIn) {
  const struct {
    const char* text;
    const char* from;
    const char* to;
    const char* result;
  } cases[] = {
      {"", "a", "b", ""},
      {"abc", "x", "y", "abc"},
      {"aaa", "a", "aa", "aaaaaa"},
      {"aaaa", "aa", "b", "bb"},
      {"aaaaa", "aa", "b", "bba"},
      {"abcabc", "abc", "", ""},
      {"xabcx", "abc", "abcabc", "xabcabcx"},
      {"ab", "ab", "b", "b"},
      {"aab", "ab", "b", "ab"},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    ReplaceAll(text, c.from, c.to);
    EXPECT_EQ(text, c.result) << c.text;
  }
}

TEST(EscapeText, EscapesBackslashesBeforeQuotes) {
  std::string text = "a\"b\\c\\\"";
  EscapeText(text);
  EXPECT_EQ(text, R"(a\"b\\c\\\")");
}

}  // namespace

}  // namespace ostrafel
