// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/utf8.h"

#include <algorithm>
#include <array>

namespace ostrafel {

namespace {

struct Range {
  char32_t first;
  char32_t last;
};

template <std::size_t N>
bool IsIn(const std::array<Range, N>& ranges, char32_t code) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](const Range& range) { return range.first <= code && code <= range.last; });
}

// Controls, the separators of lines and paragraphs, the marks of direction.
constexpr std::array kControls = {
    Range{0x0000, 0x001F}, Range{0x007F, 0x009F}, Range{0x061C, 0x061C}, Range{0x200E, 0x200F},
    Range{0x2028, 0x202E}, Range{0x2066, 0x2069}, Range{0xFEFF, 0xFEFF},
};

// Accents and other marks of the scripts that names of hardware are likely to be in.
constexpr std::array kCombining = {
    Range{0x0300, 0x036F}, Range{0x0483, 0x0489}, Range{0x0591, 0x05BD},   Range{0x0610, 0x061A},
    Range{0x064B, 0x065F}, Range{0x0E34, 0x0E3A}, Range{0x0E47, 0x0E4E},   Range{0x1AB0, 0x1AFF},
    Range{0x1DC0, 0x1DFF}, Range{0x200B, 0x200D}, Range{0x20D0, 0x20FF},   Range{0x3099, 0x309A},
    Range{0xFE00, 0xFE0F}, Range{0xFE20, 0xFE2F}, Range{0xE0100, 0xE01EF},
};

// Hangul, Han, Kana, their punctuation and full-width forms; pictures.
constexpr std::array kWide = {
    Range{0x1100, 0x115F},   Range{0x2E80, 0x303E},   Range{0x3041, 0x4DBF},
    Range{0x4E00, 0xA4CF},   Range{0xA960, 0xA97F},   Range{0xAC00, 0xD7A3},
    Range{0xF900, 0xFAFF},   Range{0xFE30, 0xFE6F},   Range{0xFF01, 0xFF60},
    Range{0xFFE0, 0xFFE6},   Range{0x1F300, 0x1F64F}, Range{0x1F680, 0x1F6FF},
    Range{0x1F900, 0x1F9FF}, Range{0x20000, 0x3FFFD},
};

}  // namespace

Character FirstCharacter(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned first = byte(0);
  if (first < 0x80) return {1, first, true};
  const Character invalid = {1, first, false};
  const std::size_t size = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (first < 0xC2 || first > 0xF4 || text.size() < size) return invalid;
  char32_t code = first & (0x7FU >> size);
  for (std::size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return invalid;
    code = code << 6U | (byte(i) & 0x3FU);
  }
  // What fits into fewer bytes, halves of surrogate pairs, what is beyond the last code point.
  constexpr std::array<char32_t, 5> least = {0, 0, 0x80, 0x800, 0x10000};
  const bool is_surrogate = 0xD800 <= code && code <= 0xDFFF;
  if (code < least[size] || is_surrogate || code > 0x10FFFF) return invalid;
  return {size, code, true};
}

bool IsText(std::string_view text) {
  while (!text.empty()) {
    const Character character = FirstCharacter(text);
    if (!character.is_valid || character.code == 0) return false;
    text.remove_prefix(character.size);
  }
  return true;
}

bool IsControl(const Character& character) {
  return character.is_valid && IsIn(kControls, character.code);
}

std::size_t ColumnsOf(char32_t code) {
  if (code < 0x300) return 1;
  if (IsIn(kCombining, code)) return 0;
  return IsIn(kWide, code) ? 2 : 1;
}

std::string EscapeBytes(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]};
  }
  return text;
}

std::optional<char> ByteOf(std::string_view digits) {
  constexpr std::string_view all = "0123456789abcdef0123456789ABCDEF";
  if (digits.size() != 2) return std::nullopt;
  const std::size_t high = all.find(digits[0]);
  const std::size_t low = all.find(digits[1]);
  if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
  return static_cast<char>(static_cast<unsigned char>(high % 16 * 16 + low % 16));
}

std::string Printable(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const Character character = FirstCharacter(text);
    const std::string_view bytes = text.substr(0, character.size);
    if (character.is_valid && !IsControl(character)) {
      result += bytes;
    } else {
      result += EscapeBytes(bytes);
    }
    text.remove_prefix(character.size);
  }
  return result;
}

}  // namespace ostrafel
