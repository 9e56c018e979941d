// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_JSON_VALUE_H_
#define OSTRAFEL_TESTS_MODEL_JSON_VALUE_H_

#include <optional>
#include <string>
#include <vector>

namespace model {

struct JsonMember;

/// A JSON value as a plain tree, free of the parser's handles. Which of the other members count
/// depends on the kind. Object members keep the order in which the parser's iterator yields them.
struct JsonValue {
  enum class Kind { kObject, kArray, kString, kInteger, kReal, kTrue, kFalse, kNull };

  Kind kind = Kind::kNull;
  std::string text;
  long long integer = 0;
  double real = 0;
  std::vector<JsonMember> members;
  std::vector<JsonValue> elements;
};

/// One member of an object.
struct JsonMember {
  std::string name;
  JsonValue value;
};

/// The value of the object's member of this name, or none.
const JsonValue* FindMember(const JsonValue& object, const std::string& name);

/// Sets a member: a member of this name keeps its place and gets the value, a new one goes last.
void SetMember(JsonValue& object, const std::string& name, const JsonValue& value);

/// A string value.
JsonValue JsonString(const std::string& text);

/// Reads the file into a value, skipping a byte-order mark. A file that cannot be opened yields
/// none without a word; one shorter than 3 bytes adds "error: Failed to read file.\n" to `err` and
/// is parsed all the same; one that the parser refuses adds "error: on line N: ...\n" and yields
/// none.
std::optional<JsonValue> LoadJson(const std::string& path, std::string& err);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_JSON_VALUE_H_
