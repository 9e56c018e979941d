// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/json_value.h"

#include <jansson.h>

#include <cstddef>
#include <cstdio>
#include <cstring>

namespace model {
namespace {

JsonValue Convert(json_t* parsed) {
  JsonValue value;
  switch (json_typeof(parsed)) {
    case JSON_OBJECT:
      value.kind = JsonValue::Kind::kObject;
      for (void* i = json_object_iter(parsed); i != nullptr; i = json_object_iter_next(parsed, i)) {
        value.members.push_back({json_object_iter_key(i), Convert(json_object_iter_value(i))});
      }
      break;
    case JSON_ARRAY:
      value.kind = JsonValue::Kind::kArray;
      for (std::size_t i = 0; i < json_array_size(parsed); ++i) {
        value.elements.push_back(Convert(json_array_get(parsed, i)));
      }
      break;
    case JSON_STRING:
      value.kind = JsonValue::Kind::kString;
      value.text = json_string_value(parsed);
      break;
    case JSON_INTEGER:
      value.kind = JsonValue::Kind::kInteger;
      value.integer = json_integer_value(parsed);
      break;
    case JSON_REAL:
      value.kind = JsonValue::Kind::kReal;
      value.real = json_real_value(parsed);
      break;
    case JSON_TRUE:
      value.kind = JsonValue::Kind::kTrue;
      break;
    case JSON_FALSE:
      value.kind = JsonValue::Kind::kFalse;
      break;
    case JSON_NULL:
      value.kind = JsonValue::Kind::kNull;
      break;
  }
  return value;
}

}  // namespace

const JsonValue* FindMember(const JsonValue& object, const std::string& name) {
  for (const JsonMember& member : object.members) {
    if (member.name == name) return &member.value;
  }
  return nullptr;
}

void SetMember(JsonValue& object, const std::string& name, const JsonValue& value) {
  for (JsonMember& member : object.members) {
    if (member.name == name) {
      member.value = value;
      return;
    }
  }
  object.members.push_back({name, value});
}

JsonValue JsonString(const std::string& text) {
  JsonValue value;
  value.kind = JsonValue::Kind::kString;
  value.text = text;
  return value;
}

std::optional<JsonValue> LoadJson(const std::string& path, std::string& err) {
  std::FILE* file = std::fopen(path.c_str(), "r");
  if (file == nullptr) return std::nullopt;
  char start[3];
  const std::size_t length = std::fread(start, 1, sizeof start, file);
  if (length < sizeof start) err += "error: Failed to read file.\n";
  const bool marked = length == sizeof start && std::memcmp(start, "\xEF\xBB\xBF", 3) == 0;
  if (!marked) std::rewind(file);

  json_error_t error;
  json_t* parsed = json_loadf(file, 0, &error);
  std::fclose(file);
  if (parsed == nullptr) {
    err += "error: on line " + std::to_string(error.line) + ": " + error.text + "\n";
    return std::nullopt;
  }
  const JsonValue value = Convert(parsed);
  json_decref(parsed);
  return value;
}

}  // namespace model
