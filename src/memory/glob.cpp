// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "memory/glob.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace ostrafel {

namespace {

// What does not stand for itself outside of a class.
constexpr std::string_view kSpecial = "*?[\\";

// Where a server gives up, so that a pattern does not exhaust its stack.
constexpr int kMaxStars = 1000;

bool StartsWith(std::string_view string, char byte) {
  return !string.empty() && string.front() == byte;
}

// Takes the rest of a class off the front of pattern. True when byte is in the class.
bool TakeClass(std::string_view* pattern, char byte) {
  const bool is_negated = StartsWith(*pattern, '^');
  if (is_negated) pattern->remove_prefix(1);
  bool is_listed = false;
  while (!pattern->empty() && pattern->front() != ']') {
    std::size_t size = 1;
    char low = pattern->front();
    char high = low;
    if (low == '\\' && pattern->size() >= 2) {
      size = 2;
      low = high = (*pattern)[1];
    } else if (pattern->size() >= 3 && (*pattern)[1] == '-') {
      size = 3;
      high = (*pattern)[2];
    }
    // Plain chars, as a server compares them: whether they have a sign is the processor's affair.
    if (low > high) std::swap(low, high);
    is_listed = is_listed || (low <= byte && byte <= high);
    pattern->remove_prefix(size);
  }
  if (!pattern->empty()) pattern->remove_prefix(1);
  return is_listed != is_negated;
}

// Takes what stands for one byte off the front of pattern, which is not empty and begins with no
// star. True when it stands for this byte.
bool TakeOne(std::string_view* pattern, char byte) {
  const char first = pattern->front();
  if (first == '\\' && pattern->size() >= 2) pattern->remove_prefix(1);
  const char literal = pattern->front();
  pattern->remove_prefix(1);
  if (first == '?') return true;
  if (first == '[') return TakeClass(pattern, byte);
  return literal == byte;
}

// Takes the stars off the front of pattern.
void TakeStars(std::string_view* pattern) {
  pattern->remove_prefix(std::min(pattern->find_first_not_of('*'), pattern->size()));
}

}  // namespace

bool MatchesGlob(std::string_view pattern, std::string_view string) {
  if (string.empty()) return pattern.empty();
  // After the last star: the rest of the pattern, and the string from where that rest is tried.
  std::optional<std::string_view> rest;
  std::string_view tried;
  int stars = 0;
  while (!string.empty()) {
    if (StartsWith(pattern, '*')) {
      TakeStars(&pattern);
      if (pattern.empty()) return true;
      if (++stars > kMaxStars) return false;
      rest = pattern;
      tried = string;
    } else if (!pattern.empty() && TakeOne(&pattern, string.front())) {
      string.remove_prefix(1);
    } else if (rest) {
      // The last star takes a byte more. An earlier one need not: that would only leave less.
      tried.remove_prefix(1);
      string = tried;
      pattern = *rest;
    } else {
      return false;
    }
  }
  TakeStars(&pattern);
  return pattern.empty();
}

std::string_view LiteralStart(std::string_view pattern) {
  return pattern.substr(0, pattern.find_first_of(kSpecial));
}

std::string EscapeGlob(std::string_view string) {
  std::string pattern;
  for (const char c : string) {
    if (kSpecial.find(c) != std::string_view::npos) pattern += '\\';
    pattern += c;
  }
  return pattern;
}

}  // namespace ostrafel
