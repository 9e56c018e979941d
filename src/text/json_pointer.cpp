// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/json_pointer.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "text/utf8.h"

namespace ostrafel {

namespace {

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
  const std::optional<std::string> name = NameOfStep(step);
  return name ? json_object_get(value, name->c_str()) : nullptr;
}

}  // namespace

void AppendStep(std::string_view name, std::string* pointer) {
  *pointer += '/';
  for (const char c : name) {
    if (c == '~') {
      *pointer += "~0";
    } else if (c == '/') {
      *pointer += "~1";
    } else {
      *pointer += c;
    }
  }
}

std::string ChildPointer(std::string pointer, std::string_view name) {
  AppendStep(name, &pointer);
  return pointer;
}

std::optional<std::string> NameOfStep(std::string_view step) {
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
    const std::optional<char> byte = ByteOf(text.substr(i + 1, 2));
    if (!byte) return std::nullopt;
    decoded += *byte;
    i += 2;
  }
  return decoded;
}

}  // namespace ostrafel
