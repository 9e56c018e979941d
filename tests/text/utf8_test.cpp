// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/utf8.h"

#include <gtest/gtest.h>
#include <jansson.h>

#include <string>

namespace ostrafel {

namespace {

// True when the text begins with a character of that code point, in all its bytes.
bool IsCharacter(const std::string& text, char32_t code) {
  const Character first = FirstCharacter(text);
  return first.is_valid && first.size == text.size() && first.code == code;
}

// True when the first byte is taken for no UTF-8.
bool IsRefused(const std::string& text) {
  const Character first = FirstCharacter(text);
  return !first.is_valid && first.size == 1 && first.code == static_cast<unsigned char>(text[0]);
}

TEST(Utf8, ReadsTheFirstAndLastCharactersOfEachSize) {
  EXPECT_TRUE(IsCharacter(std::string(1, '\0'), 0));
  EXPECT_TRUE(IsCharacter("\x7F", 0x7F));
  EXPECT_TRUE(IsCharacter("\xC2\x80", 0x80));
  EXPECT_TRUE(IsCharacter("\xDF\xBF", 0x7FF));
  EXPECT_TRUE(IsCharacter("\xE0\xA0\x80", 0x800));
  EXPECT_TRUE(IsCharacter("\xED\x9F\xBF", 0xD7FF));
  EXPECT_TRUE(IsCharacter("\xEE\x80\x80", 0xE000));
  EXPECT_TRUE(IsCharacter("\xEF\xBF\xBF", 0xFFFF));
  EXPECT_TRUE(IsCharacter("\xF0\x90\x80\x80", 0x10000));
  EXPECT_TRUE(IsCharacter("\xF4\x8F\xBF\xBF", 0x10FFFF));
}

TEST(Utf8, RefusesWhatIsNone) {
  EXPECT_TRUE(IsRefused("\x80"));
  EXPECT_TRUE(IsRefused("\xBF\x80"));
  EXPECT_TRUE(IsRefused("\xC1\xBF"));          // fits into one byte
  EXPECT_TRUE(IsRefused("\xE0\x9F\xBF"));      // fits into two
  EXPECT_TRUE(IsRefused("\xF0\x8F\xBF\xBF"));  // fits into three
  EXPECT_TRUE(IsRefused("\xED\xA0\x80"));      // the first surrogate
  EXPECT_TRUE(IsRefused("\xED\xBF\xBF"));      // the last
  EXPECT_TRUE(IsRefused("\xF4\x90\x80\x80"));  // beyond the last character
  EXPECT_TRUE(IsRefused("\xF8\x88\x80\x80\x80"));
  EXPECT_TRUE(IsRefused("\xFF"));
  EXPECT_TRUE(IsRefused("\xE2\x82"));  // cut off
  EXPECT_TRUE(IsRefused("\xE2\x82z"));
  EXPECT_TRUE(IsRefused("\xE2zz"));
}

TEST(Utf8, ReadsTheBytesThatAreEscaped) {
  EXPECT_EQ(ByteOf("00"), '\0');
  EXPECT_EQ(ByteOf("aF"), '\xAF');
  EXPECT_EQ(ByteOf("Fa"), '\xFA');
  for (const char* text : {"", "1", "123", "g0", "0G", " 1", "-1"}) {
    EXPECT_EQ(ByteOf(text), std::nullopt) << text;
  }
}

TEST(Utf8, HasColumnsAsTerminalsDo) {
  EXPECT_EQ(ColumnsOf('A'), 1U);
  EXPECT_EQ(ColumnsOf(U'é'), 1U);
  EXPECT_EQ(ColumnsOf(0x301), 0U);  // an accent by itself
  EXPECT_EQ(ColumnsOf(U'Ж'), 1U);
  EXPECT_EQ(ColumnsOf(U'漢'), 2U);
  EXPECT_EQ(ColumnsOf(U'한'), 2U);
  EXPECT_EQ(ColumnsOf(U'。'), 2U);
  EXPECT_EQ(ColumnsOf(U'…'), 1U);
  EXPECT_EQ(ColumnsOf(0x1F600), 2U);
}

TEST(Utf8, PrintsControlsAndOtherBytesEscaped) {
  EXPECT_EQ(Printable("caf\xC3\xA9, \xE6\xBC\xA2"), "caf\xC3\xA9, \xE6\xBC\xA2");
  EXPECT_EQ(Printable("a\nb\tc\x1B[31m\x7F"), R"(a\x0ab\x09c\x1b[31m\x7f)");
  EXPECT_EQ(Printable("\xC2\x9B"), R"(\xc2\x9b)");              // a control of one byte elsewhere
  EXPECT_EQ(Printable("\xE2\x80\xA8"), R"(\xe2\x80\xa8)");      // a line separator
  EXPECT_EQ(Printable("\xE2\x80\xAEx"), R"(\xe2\x80\xaex)");    // right to left from here
  EXPECT_EQ(Printable("a\xFF\xE2\x82z"), R"(a\xff\xe2\x82z)");  // no UTF-8
  EXPECT_EQ(Printable(std::string("a\0b", 3)), R"(a\x00b)");
  EXPECT_EQ(Printable(""), "");
}

TEST(Utf8, IsWhatJsonTakes) {
  for (const std::string& text :
       {std::string(), std::string("a\x01\x7f"), std::string("\xC2\x80\xF4\x8F\xBF\xBF"),
        std::string("\xEF\xBF\xBF"), std::string("\xFF"), std::string("a\x80"),
        std::string("\xC0\x80"), std::string("\xED\xA0\x80"), std::string("\xF4\x90\x80\x80"),
        std::string("a\xE2\x82"), std::string("\xC3")}) {
    json_t* value = json_stringn(text.data(), text.size());
    EXPECT_EQ(IsText(text), value != nullptr) << testing::PrintToString(text);
    json_decref(value);
  }
  EXPECT_FALSE(IsText(std::string("a\0b", 3)));
  EXPECT_FALSE(IsText(std::string("\0", 1)));
}

}  // namespace

}  // namespace ostrafel
