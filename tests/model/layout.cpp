// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/layout.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <set>
#include <vector>

namespace model {
namespace {

const std::set<std::string> kReservedNames = {
    "&&AllowMethod",
    "&&CRUDprefix",
    "&&POSTValidation",
    "&&PATCHValidation",
    "&&PUTValidation",
    "&&Validation",
    "&&SensitiveData",
    "&&ETag",
    "&&Async",
    "&&BlockCSRGeneration",
    "&&BlockReplaceCertificate",
    "&&OwnerName",
    "&&Privileges",
    "&&AllowDeepMethod",
    "&&DateTime",
};

std::string RenderedInteger(long long integer) {
  const long long lowest = std::numeric_limits<std::int32_t>::min();
  const long long highest = std::numeric_limits<std::int32_t>::max();
  return std::to_string(std::clamp(integer, lowest, highest));
}

std::string RenderedReal(double real) {
  char text[400];  // the longest double has 309 digits before the point
  std::snprintf(text, sizeof text, "%f", real);
  std::string rendered = text;
  while (rendered.back() == '0') rendered.pop_back();
  return rendered;
}

}  // namespace

std::string NormalizedKey(std::string key) {
  for (auto at = key.find("//"); at != std::string::npos; at = key.find("//")) key.erase(at, 1);
  return StartsWith(key, "&&") ? key : "&&" + key;
}

std::string DerivedKey(const std::string& parent_key, const std::string& name) {
  return NormalizedKey(parent_key + "/" + name);
}

std::string PatternBelow(const std::string& key) {
  return !key.empty() && key.back() == '/' ? key + "*" : key + "/*";
}

bool StartsWith(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

bool IsReserved(const std::string& name) { return kReservedNames.count(name) != 0; }

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\' || c == '"') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

std::string RenderedValue(const JsonValue& value) {
  switch (value.kind) {
    case JsonValue::Kind::kString:
      return "\"" + Escaped(value.text) + "\"";
    case JsonValue::Kind::kInteger:
      return RenderedInteger(value.integer);
    case JsonValue::Kind::kReal:
      return RenderedReal(value.real);
    case JsonValue::Kind::kTrue:
      return "true";
    case JsonValue::Kind::kFalse:
      return "false";
    case JsonValue::Kind::kNull:
      return "null";
    case JsonValue::Kind::kObject:
    case JsonValue::Kind::kArray:
      break;
  }
  return "";
}

}  // namespace model
