// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tree/json_pointer.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace ostrafel {

namespace {

// The name that a step of a pointer stands for; nothing for a "~" without "0" or "1" and for a NUL,
// which no name holds.
std::optional<std::string> NameOf(std::string_view step) {
  std::string name;
  for (std::size_t i = 0; i < step.size(); ++i) {
    char next = step[i];
    if (next == '\0') return std::nullopt;
    if (next == '~') {
      if (++i == step.size() || (step[i] != '0' && step[i] != '1')) return std::nullopt;
      next = step[i] == '0' ? '~' : '/';
    }
    name += next;
  }
  return name;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The index that a step stands for: digits, of which the first is no idle zero.
std::optional<std::size_t> IndexOf(std::string_view step) {
  if (step.empty() || !std::all_of(step.begin(), step.end(), IsDigit)) return std::nullopt;
  if (step.size() > 1 && step.front() == '0') return std::nullopt;
  std::size_t index = 0;
  for (const char digit : step) {
    if (index > std::numeric_limits<std::size_t>::max() / 10 - 1) return std::nullopt;
    index = index * 10 + static_cast<std::size_t>(digit - '0');
  }
  return index;
}

const json_t* Child(const json_t* value, std::string_view step) {
  if (json_is_array(value)) {
    const std::optional<std::size_t> index = IndexOf(step);
    return index ? json_array_get(value, *index) : nullptr;
  }
  const std::optional<std::string> name = NameOf(step);
  return name ? json_object_get(value, name->c_str()) : nullptr;
}

// The value of a hexadecimal digit; nothing for another character.
std::optional<unsigned> HexDigit(char c) {
  constexpr std::string_view digits = "0123456789abcdef";
  const std::size_t found = digits.find(c >= 'A' && c <= 'F' ? static_cast<char>(c + 32) : c);
  if (found == std::string_view::npos) return std::nullopt;
  return static_cast<unsigned>(found);
}

}  // namespace

const json_t* ValueAt(const json_t* root, std::string_view pointer) {
  const json_t* value = root;
  while (value != nullptr && !pointer.empty()) {
    if (pointer.front() != '/') return nullptr;
    pointer.remove_prefix(1);
    const std::string_view step = pointer.substr(0, pointer.find('/'));
    value = Child(value, step);
    pointer.remove_prefix(step.size());
  }
  return value;
}

std::optional<std::string> DecodePercents(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    if (text.size() - i < 3) return std::nullopt;
    const std::optional<unsigned> high = HexDigit(text[i + 1]);
    const std::optional<unsigned> low = HexDigit(text[i + 2]);
    if (!high || !low) return std::nullopt;
    decoded += static_cast<char>(static_cast<unsigned char>(*high * 16 + *low));
    i += 2;
  }
  return decoded;
}

}  // namespace ostrafel
