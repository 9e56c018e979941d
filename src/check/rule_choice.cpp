// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/rule_choice.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "check/rule.h"

namespace ostrafel {

namespace {

// Does the word mean the rule? A whole name means that rule alone, though others begin so.
bool Means(const std::string& word, const Rule& rule) {
  if (word == "all") return true;
  if (word == "default") return rule.is_on;
  if (FindRule(word) != nullptr) return word == rule.name;
  return !word.empty() && std::string_view(rule.name).substr(0, word.size()) == word;
}

// Returns false when the word means no rule.
bool ChooseByWord(const std::string& word, std::vector<bool>* chosen) {
  bool is_known = false;
  for (const Rule& rule : Rules()) {
    if (!Means(word, rule)) continue;
    (*chosen)[static_cast<std::size_t>(rule.id)] = true;
    is_known = true;
  }
  return is_known;
}

}  // namespace

std::vector<bool> DefaultRules() {
  std::vector<bool> chosen(Rules().size());
  (void)ChooseByWord("default", &chosen);
  return chosen;
}

std::optional<std::string> ChooseRules(const std::string& list, std::vector<bool>* chosen) {
  std::size_t start = 0;
  while (true) {
    const std::size_t end = std::min(list.find(',', start), list.size());
    const std::string word = list.substr(start, end - start);
    if (!ChooseByWord(word, chosen)) return word;
    if (end == list.size()) return std::nullopt;
    start = end + 1;
  }
}

}  // namespace ostrafel
