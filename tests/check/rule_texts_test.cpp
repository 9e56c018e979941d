// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/rule_texts.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace ostrafel {

namespace {

std::vector<std::string> LinesOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string Explained(const char* explanation) {
  return RuleExplanation(
      {RuleId::kLoadSyntax, "a-rule", Level::kNote, true, "what it is about", explanation});
}

const std::string kHead = "a-rule: what it is about\nLevel: note\n";

TEST(RuleList, HasALineForEachRuleInColumns) {
  const std::vector<std::string> lines = LinesOf(RuleList());
  ASSERT_EQ(lines.size(), Rules().size());
  std::set<std::size_t> columns;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Rule& rule = Rules()[i];
    std::istringstream words(lines[i]);
    std::string name;
    std::string level;
    words >> name >> level;
    EXPECT_EQ(name, rule.name);
    EXPECT_EQ(level, NameOf(rule.level));
    columns.insert(lines[i].find(rule.summary));
  }
  EXPECT_EQ(columns.size(), 1U);
  EXPECT_EQ(columns.count(std::string::npos), 0U);
}

TEST(RuleList, SaysWhichRulesAreOff) {
  const std::string note = " (only with --select)";
  for (std::size_t i = 0; i < Rules().size(); ++i) {
    const std::string line = LinesOf(RuleList()).at(i);
    EXPECT_EQ(line.find(note) == std::string::npos, Rules()[i].is_on) << line;
  }
}

TEST(RuleExplanation, BeginsWithTheRule) {
  EXPECT_EQ(Explained(""), kHead);
  EXPECT_EQ(Explained("Why."), kHead + "\nWhy.\n");
}

TEST(RuleExplanation, SaysThatARuleIsOff) {
  const Rule rule = {RuleId::kLoadSyntax, "a-rule", Level::kError, false, "about", ""};
  EXPECT_EQ(RuleExplanation(rule), "a-rule: about\nLevel: error, only with --select\n");
}

TEST(RuleExplanation, IsBrokenIntoLinesOf80Columns) {
  const std::string nine(9, 'n');
  std::string words = nine;
  for (int i = 0; i < 7; ++i) words += " " + nine;
  EXPECT_EQ(Explained((words + "+").c_str()), kHead + "\n" + words + "+\n");
  EXPECT_EQ(Explained((words + "++").c_str()),
            kHead + "\n" + words.substr(0, 69) + "\n" + nine + "++\n");
}

TEST(RuleExplanation, CountsCharactersAndNotBytes) {
  std::string words = "\u00fc\u00fc\u00fc";
  for (int i = 0; i < 19; ++i) words += " \u00fc\u00fc\u00fc";
  EXPECT_EQ(Explained((words + "\u00fc").c_str()), kHead + "\n" + words + "\u00fc\n");
}

TEST(RuleExplanation, BreaksNoWord) {
  const std::string word(100, 'w');
  EXPECT_EQ(Explained(("one " + word + " two").c_str()), kHead + "\none\n" + word + "\ntwo\n");
}

TEST(RuleExplanation, KeepsParagraphsAndIndentedLines) {
  const std::string example = "  {\"a\":   1}" + std::string(80, ' ') + "end";
  EXPECT_EQ(Explained(("One.\n\n" + example + "\nTwo.").c_str()),
            kHead + "\nOne.\n\n" + example + "\nTwo.\n");
}

TEST(RuleExplanation, FitsIntoTheColumnsForEveryRule) {
  for (const Rule& rule : Rules()) {
    for (const std::string& line : LinesOf(RuleExplanation(rule))) {
      EXPECT_LE(line.size(), 80U) << line;
    }
  }
}

}  // namespace

}  // namespace ostrafel
