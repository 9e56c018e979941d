// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Writing JSON of strings that may hold bytes that are no UTF-8. What comes of it always is UTF-8.
#ifndef OSTRAFEL_TEXT_JSON_TEXT_H_
#define OSTRAFEL_TEXT_JSON_TEXT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ostrafel {

/// Appends the string in quotes. A byte that is no UTF-8 becomes the lone surrogate "\udcNN", as in
/// Python's error handler "surrogateescape": no byte is lost.
void AppendJsonString(std::string_view string, std::string* text);

/// Writes a JSON text, indented, one value after the other. The caller closes what it opens, and
/// gives each member of an object its name first.
class JsonWriter {
 public:
  /// Deeper levels than this are indented like it: a text of thousands of them would be little but
  /// blanks.
  static constexpr std::size_t kMostIndented = 32;

  /// With so many blanks in front of a line for each level.
  explicit JsonWriter(std::size_t indent = 2) : indent_(indent) {}

  void OpenObject() { Open('{', '}'); }
  void OpenArray() { Open('[', ']'); }
  void Close();

  void Name(std::string_view name);
  void String(std::string_view value);
  void Number(std::size_t value);
  void Bool(bool value);
  void Null();

  /// A value that is JSON already.
  void Literal(std::string_view text);

  /// A member with a string.
  void Member(std::string_view name, std::string_view value);

  /// A member with a number.
  void NumberMember(std::string_view name, std::size_t value);

  /// A member with a string, or null where there is none.
  void OptionalMember(std::string_view name, const std::optional<std::string>& value);

  /// A member with a line or a column, or null for 0: it is not known.
  void PositionMember(std::string_view name, std::size_t value);

  /// The whole text, ended by a line end. Nothing can be written after that.
  [[nodiscard]] std::string Finish();

 private:
  void Open(char opening, char closing);
  void BeginValue();
  void BeginLine();

  std::size_t indent_;
  std::string text_;
  std::vector<char> closings_;  // of what is open, the outermost first
  bool is_first_ = true;        // in what was opened last
  bool is_named_ = false;       // a name has just been written
};

}  // namespace ostrafel

#endif  // OSTRAFEL_TEXT_JSON_TEXT_H_
