// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/report.h"
#include "text/json_text.h"

namespace ostrafel {

namespace {

void AppendHash(const Hash& hash, std::string* text) {
  const char* separator = "{\"hash\": {";
  for (const auto& [field, value] : hash) {
    *text += separator;
    AppendJsonString(field, text);
    *text += ": ";
    AppendJsonString(value, text);
    separator = ", ";
  }
  *text += "}}";
}

void AppendList(const List& list, std::string* text) {
  const char* separator = "{\"list\": [";
  for (const std::string& element : list) {
    *text += separator;
    AppendJsonString(element, text);
    separator = ", ";
  }
  *text += "]}";
}

}  // namespace

std::string StoreJson(const Server& server) {
  std::string text;
  const char* separator = "{\n";
  for (const auto& [key, stored] : server.keys) {
    if (std::holds_alternative<OtherType>(stored)) continue;
    text += separator;
    AppendJsonString(key, &text);
    text += ": ";
    if (const Hash* hash = std::get_if<Hash>(&stored)) AppendHash(*hash, &text);
    if (const List* list = std::get_if<List>(&stored)) AppendList(*list, &text);
    separator = ",\n";
  }
  return text.empty() ? "{}\n" : text + "\n}\n";
}

}  // namespace ostrafel
