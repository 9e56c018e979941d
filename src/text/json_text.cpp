// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/json_text.h"

#include <algorithm>
#include <utility>

#include "text/utf8.h"

namespace ostrafel {

namespace {

bool IsPlain(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x20 && byte < 0x7F && c != '"' && c != '\\';
}

// Appends "\uNNNN".
void AppendEscape(char32_t code, std::string* text) {
  constexpr std::string_view digits = "0123456789abcdef";
  *text += "\\u";
  for (const unsigned shift : {12U, 8U, 4U, 0U}) *text += digits[code >> shift & 0xFU];
}

// Appends the first character of string, which is not plain, and returns its size.
std::size_t AppendCharacter(std::string_view string, std::string* text) {
  const Character character = FirstCharacter(string);
  if (!character.is_valid) {
    AppendEscape(0xDC00 + character.code, text);
  } else if (character.code == '"' || character.code == '\\') {
    *text += {'\\', string.front()};
  } else if (character.code == '\n') {
    *text += "\\n";
  } else if (character.code < 0x10000 && IsControl(character)) {
    AppendEscape(character.code, text);
  } else {
    *text += string.substr(0, character.size);
  }
  return character.size;
}

}  // namespace

void AppendJsonString(std::string_view string, std::string* text) {
  *text += '"';
  while (!string.empty()) {
    std::size_t plain = 0;
    while (plain < string.size() && IsPlain(string[plain])) ++plain;
    *text += string.substr(0, plain);
    string.remove_prefix(plain);
    if (!string.empty()) string.remove_prefix(AppendCharacter(string, text));
  }
  *text += '"';
}

void JsonWriter::Close() {
  const char closing = closings_.back();
  closings_.pop_back();
  if (!is_first_) BeginLine();
  text_ += closing;
  is_first_ = false;
}

void JsonWriter::Name(std::string_view name) {
  BeginValue();
  AppendJsonString(name, &text_);
  text_ += ": ";
  is_named_ = true;
}

void JsonWriter::String(std::string_view value) {
  BeginValue();
  AppendJsonString(value, &text_);
}

void JsonWriter::Number(std::size_t value) { Literal(std::to_string(value)); }

void JsonWriter::Bool(bool value) { Literal(value ? "true" : "false"); }

void JsonWriter::Null() { Literal("null"); }

void JsonWriter::Literal(std::string_view text) {
  BeginValue();
  text_ += text;
}

void JsonWriter::Member(std::string_view name, std::string_view value) {
  Name(name);
  String(value);
}

void JsonWriter::NumberMember(std::string_view name, std::size_t value) {
  Name(name);
  Number(value);
}

void JsonWriter::OptionalMember(std::string_view name, const std::optional<std::string>& value) {
  Name(name);
  if (value) {
    String(*value);
  } else {
    Null();
  }
}

void JsonWriter::PositionMember(std::string_view name, std::size_t value) {
  Name(name);
  if (value != 0) {
    Number(value);
  } else {
    Null();
  }
}

std::string JsonWriter::Finish() {
  text_ += '\n';
  return std::move(text_);
}

void JsonWriter::Open(char opening, char closing) {
  BeginValue();
  text_ += opening;
  closings_.push_back(closing);
  is_first_ = true;
}

void JsonWriter::BeginValue() {
  if (is_named_) {
    is_named_ = false;
    return;
  }
  if (closings_.empty()) return;
  if (!is_first_) text_ += ',';
  is_first_ = false;
  BeginLine();
}

void JsonWriter::BeginLine() {
  text_ += '\n';
  text_.append(indent_ * std::min(closings_.size(), kMostIndented), ' ');
}

}  // namespace ostrafel
