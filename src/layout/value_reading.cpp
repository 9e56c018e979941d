// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/value_reading.h"

#include <jansson.h>

#include <algorithm>
#include <cstddef>
#include <memory>

#include "layout/value_rendering.h"

namespace ostrafel {

namespace {

// Numbers that are longer than this are not looked at: "%f" makes at most 317 characters.
constexpr std::size_t kLongestNumber = 328;

// Integers with fewer digits than this are within 32 bits.
constexpr std::size_t kSafeDigits = 10;

struct Release {
  void operator()(json_t* value) const { json_decref(value); }
};
using Value = std::unique_ptr<json_t, Release>;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// True for "0", "-7", "123456789": written as RenderValue does, and short.
bool IsShortInteger(std::string_view text) {
  const std::string_view digits = text.substr(!text.empty() && text.front() == '-' ? 1 : 0);
  if (digits.empty() || digits.size() >= kSafeDigits) return false;
  if (!std::all_of(digits.begin(), digits.end(), IsDigit)) return false;
  return digits.front() != '0' || text == "0";
}

// The number that a JSON text has; null when it is none that jansson takes.
Value ParseNumber(const std::string& text) {
  if (text.empty() || text.size() > kLongestNumber) return nullptr;
  if (text.front() != '-' && !IsDigit(text.front())) return nullptr;
  // Blanks around it are no part of a number, but jansson passes over them, and ends at a NUL.
  constexpr std::string_view passed_over("\0 \t\r\n", 5);
  if (text.find_first_of(passed_over) != std::string::npos) return nullptr;
  return Value(json_loadb(text.data(), text.size(), JSON_DECODE_ANY, nullptr));
}

}  // namespace

Scalar ReadScalar(std::string_view stored) {
  if (stored.size() >= 2 && stored.front() == '"' && stored.back() == '"') {
    std::optional<std::string> content = UnescapeText(stored.substr(1, stored.size() - 2));
    if (content) return {ScalarKind::kString, *std::move(content)};
    return {ScalarKind::kUnknown, std::string(stored)};
  }
  std::string text(stored);
  if (text == "true" || text == "false" || text == "null" || IsShortInteger(text)) {
    return {ScalarKind::kLiteral, text};
  }
  // "5." is 5.0 in JSON.
  if (!text.empty() && text.back() == '.') text += '0';
  const Value value = ParseNumber(text);
  if (value != nullptr && RenderValue(value.get()) == stored) return {ScalarKind::kLiteral, text};
  return {ScalarKind::kUnknown, std::string(stored)};
}

std::optional<std::string> UnescapeText(std::string_view text) {
  std::string content;
  content.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') return std::nullopt;
    if (text[i] == '\\') {
      ++i;
      if (i == text.size() || (text[i] != '\\' && text[i] != '"')) return std::nullopt;
    }
    content += text[i];
  }
  return content;
}

bool IsBound(std::string_view stored) { return stored == "2147483647" || stored == "-2147483648"; }

std::optional<std::string> ReadForeignNumber(std::string_view stored) {
  std::string text(stored);
  if (ParseNumber(text) == nullptr) return std::nullopt;
  return text;
}

}  // namespace ostrafel
