// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/source_text.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <string_view>

#include "text/utf8.h"

namespace ostrafel {

namespace {

// The line and the marks below it, or "none".
std::string Shown(SourceText* source, const Position& place, std::size_t columns = 40) {
  const std::optional<Excerpt> excerpt = source->Show(place, columns);
  return excerpt ? excerpt->line + "\n" + excerpt->marks : "none";
}

std::string Shown(const std::string& text, const Position& place, std::size_t columns = 40) {
  SourceText source(text);
  return Shown(&source, place, columns);
}

TEST(SourceText, MarksTheToken) {
  const std::string text = "{\n  \"A\\\"b\": -1.5e+3,\n  \"C\": true, \"D\": []}\n";
  EXPECT_EQ(Shown(text, {1, 1}), "{\n^");
  EXPECT_EQ(Shown(text, {2, 3}), "  \"A\\\"b\": -1.5e+3,\n  ^~~~~~");
  EXPECT_EQ(Shown(text, {2, 11}), "  \"A\\\"b\": -1.5e+3,\n          ^~~~~~~");
  EXPECT_EQ(Shown(text, {3, 8}), "  \"C\": true, \"D\": []}\n       ^~~~");
  EXPECT_EQ(Shown(text, {3, 19}), "  \"C\": true, \"D\": []}\n                  ^");
}

TEST(SourceText, ShowsPlacesInAnyOrder) {
  SourceText source("ab\ncd\nef");
  EXPECT_EQ(Shown(&source, {3, 1}), "ef\n^~");
  EXPECT_EQ(Shown(&source, {1, 2}), "ab\n ^");
  EXPECT_EQ(Shown(&source, {2, 2}), "cd\n ^");
  EXPECT_EQ(Shown(&source, {2, 1}), "cd\n^~");
  EXPECT_EQ(Shown(&source, {4, 1}), "none");
  EXPECT_EQ(Shown(&source, {3, 2}), "ef\n ^");
}

TEST(SourceText, TakesAPlaceBeyondTheEndOfALineForItsEnd) {
  EXPECT_EQ(Shown("{\n", {1, 9}), "{\n ^");
  EXPECT_EQ(Shown("{\n", {2, 1}), "\n^");
  EXPECT_EQ(Shown("", {1, 1}), "\n^");
  EXPECT_EQ(Shown("", {2, 1}), "none");
  EXPECT_EQ(Shown("a", {0, 0}), "none");
}

TEST(SourceText, CountsCharactersAndShowsColumns) {
  EXPECT_EQ(Shown("\xEF\xBB\xBF{\"a\": 1}", {1, 7}), "{\"a\": 1}\n      ^");
  EXPECT_EQ(Shown("\t\"é\": 12\r\n", {1, 7}), " \"é\": 12\n      ^~");
  EXPECT_EQ(Shown("\"漢字\": 12", {1, 7}), "\"漢字\": 12\n        ^~");
  EXPECT_EQ(Shown("\"e\xCC\x81\": 12", {1, 7}), "\"e\xCC\x81\": 12\n     ^~");
  EXPECT_EQ(Shown("\"\x01\xFF\": 12", {1, 7}), "\"\\x01\\xff\": 12\n            ^~");
  EXPECT_EQ(Shown("\"漢字\"", {1, 1}), "\"漢字\"\n^~~~~~");
}

TEST(SourceText, KeepsALineThatJustFits) {
  const std::string line = "[" + std::string(18, '1') + "]";
  EXPECT_EQ(Shown(line, {1, 20}, 20), line + "\n" + std::string(19, ' ') + "^");
  EXPECT_EQ(Shown(line, {1, 21}, 20), "…" + line.substr(3) + "\n" + std::string(18, ' ') + "^");
  EXPECT_EQ(Shown("[" + line, {1, 1}, 20), "[[" + std::string(17, '1') + "…\n^");
}

TEST(SourceText, CutsALongLineAroundThePlace) {
  std::string line;
  for (char c = 'a'; c <= 'z'; ++c) line += std::string(1, c) + ",";
  EXPECT_EQ(Shown(line, {1, 25}, 20), "…,i,j,k,l,m,n,o,p,q…\n          ^");
  EXPECT_EQ(Shown(line, {1, 51}, 20), "…r,s,t,u,v,w,x,y,z,\n                 ^");
  EXPECT_EQ(Shown(line, {1, 3}, 20), "a,b,c,d,e,f,g,h,i,j…\n  ^");
}

TEST(SourceText, CutsTheMarksWithTheLine) {
  EXPECT_EQ(Shown("{\"a\": \"" + std::string(90, 'x') + "\"}", {1, 7}, 20),
            "{\"a\": \"xxxxxxxxxxxx…\n      ^~~~~~~~~~~~~");
}

TEST(SourceText, NeverBreaksACharacterOrTheWidth) {
  std::string text;
  for (int i = 0; i < 40; ++i) text += "漢e\xCC\x81\xFF\t";
  const std::size_t characters = std::size_t{40} * 5;
  SourceText source(text);
  for (std::size_t column = 1; column <= characters + 2; ++column) {
    for (std::size_t width = 20; width < 26; ++width) {
      const std::optional<Excerpt> excerpt = source.Show({1, column}, width);
      ASSERT_TRUE(excerpt);
      std::size_t columns = 0;
      std::string_view rest = excerpt->line;
      while (!rest.empty()) {
        const Character character = FirstCharacter(rest);
        ASSERT_TRUE(character.is_valid);
        columns += ColumnsOf(character.code);
        rest.remove_prefix(character.size);
      }
      ASSERT_LE(columns, width);
      ASSERT_LE(excerpt->marks.size(), width);
      // Neither half an escape nor an accent whose letter is cut off.
      ASSERT_NE(excerpt->line.find("\\xff"), std::string::npos);
      ASSERT_NE(excerpt->line.substr(0, 5), "…\xCC\x81");
    }
  }
}

TEST(SourceText, TakesATimeThatDoesNotGrowWithTheLine) {
  const std::size_t places = 20000;
  const std::size_t members = 50;
  std::string text;
  for (std::size_t i = 0; i < places * members; ++i) text += "\"é\", ";
  text += std::string(1000000, '\xCC');
  for (std::size_t i = 0; i < 1000000; ++i) text += "\xCC\x81";
  SourceText source(text);
  const auto start = std::chrono::steady_clock::now();
  for (std::size_t i = 0; i < places; ++i) ASSERT_TRUE(source.Show({1, 5 * members * i + 1}, 80));
  // A look at the whole line each time would take minutes.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

}  // namespace

}  // namespace ostrafel
