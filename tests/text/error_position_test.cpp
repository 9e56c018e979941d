// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Where the parser has refused a text.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "document/json_file.h"
#include "support/repeated.h"
#include "support/temp_directory.h"
#include "text/json_positions.h"

namespace ostrafel {

namespace {

std::string Show(const Position& position) {
  return std::to_string(position.line) + ":" + std::to_string(position.column);
}

// Where the loader's own reading of the text stops; empty when it accepts the text.
std::string ErrorIn(const std::string& text) {
  const TempDirectory directory;
  const std::string path = directory.Write("text.json", text);
  const JsonFile file = LoadJsonFile(path.c_str());
  return file.is_refused ? Show(LocateError(text, file.error)) : "";
}

TEST(ErrorPositions, AreTheStartOfTheTokenThatIsRefused) {
  EXPECT_EQ(ErrorIn("{\"A\" 12.5e3}"), "1:6");
  EXPECT_EQ(ErrorIn("{\"A\": 1 \"long name\": 2}"), "1:9");
  EXPECT_EQ(ErrorIn("{\"A\": 1,\n  }"), "2:3");
  EXPECT_EQ(ErrorIn("[1 true]"), "1:4");
  EXPECT_EQ(ErrorIn("[1, tru]"), "1:5");
  EXPECT_EQ(ErrorIn("[1, True, x]"), "1:5");
  EXPECT_EQ(ErrorIn("{A: 1}"), "1:2");
  EXPECT_EQ(ErrorIn("{'A': 1}"), "1:2");
  EXPECT_EQ(ErrorIn("[ä]"), "1:2");
  EXPECT_EQ(ErrorIn("[\"ä\", €]"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": 1} // a comment"), "1:10");
  EXPECT_EQ(ErrorIn("[1]\n\"garbage\""), "2:1");
  EXPECT_EQ(ErrorIn("[1]\n]"), "2:1");
}

TEST(ErrorPositions, TellNumbersApartAsTheParserDoes) {
  EXPECT_EQ(ErrorIn("[1-2]"), "1:3");
  EXPECT_EQ(ErrorIn("[12abc]"), "1:4");
  EXPECT_EQ(ErrorIn("[1.5.5]"), "1:5");
  EXPECT_EQ(ErrorIn("[0, 01]"), "1:5");
  EXPECT_EQ(ErrorIn("[0, 1.]"), "1:5");
  EXPECT_EQ(ErrorIn("[0, 1e+]"), "1:5");
  EXPECT_EQ(ErrorIn("[0, 1ex]"), "1:5");
  EXPECT_EQ(ErrorIn("[0, -x]"), "1:5");
  EXPECT_EQ(ErrorIn("[0, +1]"), "1:5");
  EXPECT_EQ(ErrorIn("[0, .5]"), "1:5");
  EXPECT_EQ(ErrorIn("[1e5true]"), "1:5");
  EXPECT_EQ(ErrorIn("[-"), "1:2");
}

TEST(ErrorPositions, OfNumbersOutOfRangeAreTheirStart) {
  EXPECT_EQ(ErrorIn("{\"A\": 9223372036854775808}"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\":\t-9223372036854775809 }"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\":\n-1e999,\n\"B\": 1}"), "2:1");
}

TEST(ErrorPositions, WithinAStringAreItsStart) {
  EXPECT_EQ(ErrorIn("{\"A\": \"never\n\"ended\"}"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": \"never ended"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": \"never ended\\"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": \""), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": \"ä \\\" \\x\"}"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": \"ä \\u00g0\"}"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": \"\\ud83d alone\"}"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": \"\\u0000\"}"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": \"\\\n\"}"), "1:7");
  EXPECT_EQ(ErrorIn("{\n\"A\": \"\\u00\n\"}"), "2:6");
  EXPECT_EQ(ErrorIn("{\"A\": \"a\ttab\"}"), "1:7");
  EXPECT_EQ(ErrorIn(std::string("{\"A\": \"a\0b\"}", 12)), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": \"caf\xE9\"}"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": \"\xE2\x82"), "1:7");
}

TEST(ErrorPositions, OfBytesThatAreNotUtf8AreTheirs) {
  EXPECT_EQ(ErrorIn("{\"A\": \xFF}"), "1:7");
  EXPECT_EQ(ErrorIn("{\"A\": 1\x80}"), "1:8");
  EXPECT_EQ(ErrorIn("{\"A\"\n\xC3"), "2:1");
  EXPECT_EQ(ErrorIn("\xFF\xFE{\0}"), "1:1");
  EXPECT_EQ(ErrorIn("[tru\xFF]"), "1:5");
}

TEST(ErrorPositions, AtTheEndOfTheTextAreItsEnd) {
  EXPECT_EQ(ErrorIn(""), "1:1");
  EXPECT_EQ(ErrorIn("  \n"), "2:1");
  EXPECT_EQ(ErrorIn("{"), "1:2");
  EXPECT_EQ(ErrorIn("{\"A\": 1"), "1:8");
  EXPECT_EQ(ErrorIn("{\"A\": \"ä\""), "1:10");
  EXPECT_EQ(ErrorIn("{\"A\": 1,\n"), "2:1");
}

TEST(ErrorPositions, OfOtherRefusedTexts) {
  EXPECT_EQ(ErrorIn("\n \"no object\""), "2:2");
  EXPECT_EQ(ErrorIn(" 12"), "1:2");
  EXPECT_EQ(ErrorIn(Repeated("[", 2049)), "1:2049");
  EXPECT_EQ(ErrorIn("\xEF\xBB\xBF{\"A\" 1}"), "1:6");
  EXPECT_EQ(ErrorIn("\xEF\xBB\xBF"), "1:1");
  EXPECT_EQ(ErrorIn("\xEF\xBB\xBF\xEF\xBB\xBF{}"), "1:1");
  EXPECT_EQ(ErrorIn("{\"A\": 1}"), "");
}

// jansson passes over one NUL after a number or a word, and counts it nowhere.
TEST(ErrorPositions, AreNotLedAstrayByNuls) {
  const std::string nul(1, '\0');
  EXPECT_EQ(ErrorIn("[1" + nul + "]"), "");
  EXPECT_EQ(ErrorIn("[" + nul + "1]"), "1:2");
  EXPECT_EQ(ErrorIn("[1" + nul + nul + "]"), "1:4");
  EXPECT_EQ(ErrorIn("[1]" + nul), "1:4");
  EXPECT_EQ(ErrorIn("[1" + nul), "1:4");
  EXPECT_EQ(ErrorIn("[1" + nul + "\n"), "2:1");
  EXPECT_EQ(ErrorIn("[1" + nul + ",true" + nul + ", 2" + nul + " 3]"), "1:15");
}

TEST(ErrorPositions, AreWithinTheTextWhateverTheError) {
  json_error_t error = {};
  for (const int position : {0, 3, 4, 5, 1000, -1, -2147483647 - 1, 2147483647}) {
    error.position = position;
    for (const char* text : {"", "a", "[\"\\", "\n\n\n\n\n"}) {
      const std::size_t lines = std::string(text).size() == 5 ? 6 : 1;
      const Position found = LocateError(text, error);
      EXPECT_TRUE(found.line >= 1 && found.line <= lines) << text << position;
      EXPECT_TRUE(found.column >= 1 && found.column <= std::string(text).size() + 1) << position;
    }
  }
}

}  // namespace

}  // namespace ostrafel
