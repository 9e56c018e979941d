// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/rule_texts.h"

#include <algorithm>
#include <cstddef>
#include <sstream>

#include "text/position_counter.h"

namespace ostrafel {

namespace {

constexpr std::size_t kColumns = 80;

// Of a text in UTF-8, each byte that continues no character.
std::size_t WidthOf(const std::string& text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return !ContinuesCharacter(byte); }));
}

std::string Padded(const std::string& text, std::size_t width) {
  return text + std::string(width > WidthOf(text) ? width - WidthOf(text) : 0, ' ');
}

// The words of a line, broken into lines. A word that is too long has one of its own.
std::string WrappedLine(const std::string& line) {
  std::istringstream words(line);
  std::string text;
  std::string word;
  std::size_t column = 0;
  while (words >> word) {
    const bool fits = column + 1 + WidthOf(word) <= kColumns;
    if (column > 0) text += fits ? " " : "\n";
    column = (column > 0 && fits ? column + 1 : 0) + WidthOf(word);
    text += word;
  }
  return text + "\n";
}

std::string Wrapped(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  std::string line;
  while (std::getline(lines, line)) {
    result += !line.empty() && line[0] == ' ' ? line + "\n" : WrappedLine(line);
  }
  return result;
}

}  // namespace

std::string RuleList() {
  std::size_t width = 0;
  for (const Rule& rule : Rules()) width = std::max(width, WidthOf(rule.name));
  std::string text;
  for (const Rule& rule : Rules()) {
    const char* end = rule.is_on ? "\n" : " (only with --select)\n";
    text += Padded(rule.name, width + 2) + Padded(NameOf(rule.level), 9) + rule.summary + end;
  }
  return text;
}

std::string RuleExplanation(const Rule& rule) {
  const std::string is_off = rule.is_on ? "" : ", only with --select";
  const std::string head = Wrapped(std::string(rule.name) + ": " + rule.summary) +
                           "Level: " + NameOf(rule.level) + is_off + "\n";
  const std::string explanation = rule.explanation;
  return explanation.empty() ? head : head + "\n" + Wrapped(explanation);
}

}  // namespace ostrafel
