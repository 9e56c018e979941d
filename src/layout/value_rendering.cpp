// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/value_rendering.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "layout/decimal_text.h"

namespace ostrafel {

namespace {

// The most that "%f" can need for a double (DBL_MAX has 309 digits before the point), rounded up.
constexpr std::size_t kRealSize = 328;

std::string RenderString(const json_t* value) {
  const char* content = json_string_value(value);
  if (content == nullptr) return {};
  std::string text;
  text.reserve(json_string_length(value) + 2);
  text.append(content);
  EscapeText(text);
  text.insert(text.begin(), '"');
  text.push_back('"');
  return text;
}

// Clamped before the conversion, which is undefined for a double outside the range.
std::string RenderInteger(double value) {
  using Bounds = std::numeric_limits<std::int32_t>;
  if (value >= Bounds::max()) return DecimalText(Bounds::max());
  if (value <= Bounds::min()) return DecimalText(Bounds::min());
  return DecimalText(static_cast<std::int32_t>(value));
}

std::string RenderReal(double value) {
  std::array<char, kRealSize> buffer = {};
  (void)std::snprintf(buffer.data(), buffer.size(), "%f", value);
  std::string text = buffer.data();
  text.erase(text.find_last_not_of('0') + 1);
  return text;
}

}  // namespace

void ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
  std::string result;
  result.reserve(text.size());
  std::size_t copied = 0;  // what of text is in result, in one form or the other
  for (std::size_t found = text.find(from); found != std::string::npos;
       found = text.find(from, copied)) {
    result.append(text, copied, found - copied).append(to);
    copied = found + from.size();
  }
  result.append(text, copied);
  text.swap(result);
}

void EscapeText(std::string& text) {
  // Hardly any string has either.
  if (text.find('\\') == std::string::npos && text.find('"') == std::string::npos) return;
  ReplaceAll(text, "\\", "\\\\");
  ReplaceAll(text, "\"", "\\\"");
}

std::string RenderValue(const json_t* value) {
  if (value == nullptr) return {};
  switch (json_typeof(value)) {
    case JSON_STRING:
      return RenderString(value);
    case JSON_INTEGER:
      return RenderInteger(json_number_value(value));
    case JSON_REAL:
      return RenderReal(json_number_value(value));
    case JSON_TRUE:
      return "true";
    case JSON_FALSE:
      return "false";
    case JSON_NULL:
      return "null";
    default:
      return {};
  }
}

}  // namespace ostrafel
