// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_REPLY_H_
#define OSTRAFEL_TESTS_MODEL_REPLY_H_

#include <string>
#include <utility>
#include <vector>

namespace model {

/// One Redis command: its name and its arguments, each a string of its own.
using Command = std::vector<std::string>;

/// One Redis reply. Which of the other members count depends on the type: `text` for a status, an
/// error and a string, `integer` for an integer, `elements` for an array.
struct Reply {
  enum class Type { kStatus, kError, kInteger, kNil, kString, kArray };

  Type type = Type::kNil;
  std::string text;
  long long integer = 0;
  std::vector<Reply> elements;
};

/// True when both replies are of one type and carry the same contents.
inline bool operator==(const Reply& left, const Reply& right) {
  return left.type == right.type && left.text == right.text && left.integer == right.integer &&
         left.elements == right.elements;
}

/// A status such as OK.
inline Reply StatusReply(std::string text) {
  return {Reply::Type::kStatus, std::move(text), 0, {}};
}

/// An error; it begins with the error's code word.
inline Reply ErrorReply(std::string text) { return {Reply::Type::kError, std::move(text), 0, {}}; }

/// A number.
inline Reply IntegerReply(long long integer) { return {Reply::Type::kInteger, {}, integer, {}}; }

/// The answer for "nothing there".
inline Reply NilReply() { return {}; }

/// A text.
inline Reply StringReply(std::string text) {
  return {Reply::Type::kString, std::move(text), 0, {}};
}

/// A sequence of replies.
inline Reply ArrayReply(std::vector<Reply> elements) {
  return {Reply::Type::kArray, {}, 0, std::move(elements)};
}

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_REPLY_H_
