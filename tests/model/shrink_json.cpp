// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/shrink_json.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <vector>

#include "model/shrink_list.h"

namespace model {
namespace {

using Accepts = std::function<bool(const JsonValue&)>;

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (static_cast<unsigned char>(c) < 0x20) {
      std::array<char, 8> escaped = {};
      (void)std::snprintf(escaped.data(), escaped.size(), "\\u%04x", static_cast<unsigned>(c));
      quoted += escaped.data();
      continue;
    }
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

// As few digits as give the same number; always recognisable as a real.
std::string RealText(double real) {
  std::array<char, 32> buffer = {};
  for (int digits = 1; digits <= 17; ++digits) {
    (void)std::snprintf(buffer.data(), buffer.size(), "%.*g", digits, real);
    if (std::stod(buffer.data()) == real) break;
  }
  const std::string text = buffer.data();
  return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

JsonValue Empty(JsonValue::Kind kind) {
  JsonValue value;
  value.kind = kind;
  return value;
}

bool IsContainer(const JsonValue& value) {
  return value.kind == JsonValue::Kind::kObject || value.kind == JsonValue::Kind::kArray;
}

// Replaces the value by the first of the simplest ones that is accepted.
bool Simplify(JsonValue& value, const Accepts& accepts) {
  std::vector<JsonValue> simpler;
  // A JSON text is ordered by its length: 0 is the shortest value.
  if (JsonText(value).size() > 1) simpler.push_back(Empty(JsonValue::Kind::kInteger));
  if (IsContainer(value) && !(value.members.empty() && value.elements.empty())) {
    simpler.push_back(Empty(value.kind));
    for (const JsonMember& member : value.members) {
      if (IsContainer(member.value)) simpler.push_back(member.value);
    }
    for (const JsonValue& element : value.elements) {
      if (IsContainer(element)) simpler.push_back(element);
    }
  }
  for (const JsonValue& candidate : simpler) {
    if (!accepts(candidate)) continue;
    value = JsonValue(candidate);
    return true;
  }
  return false;
}

void ShrinkMembers(JsonValue& object, const Accepts& accepts) {
  const auto with = [&](const std::vector<JsonMember>& members) {
    JsonValue changed = object;
    changed.members = members;
    return changed;
  };
  object.members = ShrinkList(
      object.members, [&](const std::vector<JsonMember>& fewer) { return accepts(with(fewer)); });
  for (std::size_t i = 0; i < object.members.size(); ++i) {
    const std::string name = ShrinkList(object.members[i].name, [&](const std::string& shorter) {
      if (FindMember(object, shorter) != nullptr) return false;
      JsonValue changed = object;
      changed.members[i].name = shorter;
      return accepts(changed);
    });
    object.members[i].name = name;
    const JsonValue value = ShrinkJson(object.members[i].value, [&](const JsonValue& simpler) {
      JsonValue changed = object;
      changed.members[i].value = simpler;
      return accepts(changed);
    });
    object.members[i].value = value;
  }
}

void ShrinkElements(JsonValue& array, const Accepts& accepts) {
  array.elements = ShrinkList(array.elements, [&](const std::vector<JsonValue>& fewer) {
    JsonValue changed = array;
    changed.elements = fewer;
    return accepts(changed);
  });
  for (std::size_t i = 0; i < array.elements.size(); ++i) {
    const JsonValue value = ShrinkJson(array.elements[i], [&](const JsonValue& simpler) {
      JsonValue changed = array;
      changed.elements[i] = simpler;
      return accepts(changed);
    });
    array.elements[i] = value;
  }
}

}  // namespace

std::string JsonText(const JsonValue& value) {
  std::string text;
  switch (value.kind) {
    case JsonValue::Kind::kObject:
      for (const JsonMember& member : value.members) {
        text += (text.empty() ? "" : ",") + Quoted(member.name) + ":" + JsonText(member.value);
      }
      return "{" + text + "}";
    case JsonValue::Kind::kArray:
      for (const JsonValue& element : value.elements) {
        text += (text.empty() ? "" : ",") + JsonText(element);
      }
      return "[" + text + "]";
    case JsonValue::Kind::kString:
      return Quoted(value.text);
    case JsonValue::Kind::kInteger:
      return std::to_string(value.integer);
    case JsonValue::Kind::kReal:
      return RealText(value.real);
    case JsonValue::Kind::kTrue:
      return "true";
    case JsonValue::Kind::kFalse:
      return "false";
    case JsonValue::Kind::kNull:
      break;
  }
  return "null";
}

JsonValue ShrinkJson(const JsonValue& value, const Accepts& accepts) {
  JsonValue best = value;
  while (Simplify(best, accepts)) continue;
  if (best.kind == JsonValue::Kind::kObject) ShrinkMembers(best, accepts);
  if (best.kind == JsonValue::Kind::kArray) ShrinkElements(best, accepts);
  if (best.kind == JsonValue::Kind::kString) {
    best.text = ShrinkList(
        best.text, [&](const std::string& shorter) { return accepts(JsonString(shorter)); });
  }
  return best;
}

}  // namespace model
