// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/json_positions.h"
#include "text/position_counter.h"

namespace ostrafel {

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// A token of a line, or the rest of the line when that ends within the token.
struct Token {
  std::size_t start;
  std::size_t end;
  bool is_open_string = false;  // the line ends before its quote
};

// Passes over the bytes from i for which is_in holds.
template <typename IsIn>
std::size_t PassOver(std::string_view line, std::size_t i, const IsIn& is_in) {
  while (i < line.size() && is_in(line[i])) ++i;
  return i;
}

Token StringAt(std::string_view line, std::size_t start) {
  for (std::size_t i = start + 1; i < line.size(); ++i) {
    if (line[i] == '"') return {start, i + 1};
    if (line[i] == '\\') ++i;
  }
  return {start, line.size(), true};
}

std::size_t EndOfNumber(std::string_view line, std::size_t start) {
  const auto is_at = [&](std::size_t i, std::string_view bytes) {
    return i < line.size() && bytes.find(line[i]) != std::string_view::npos;
  };
  std::size_t i = is_at(start, "-") ? start + 1 : start;
  i = PassOver(line, i, IsDigit);
  if (is_at(i, ".")) i = PassOver(line, i + 1, IsDigit);
  if (!is_at(i, "eE")) return i;
  ++i;
  return PassOver(line, is_at(i, "+-") ? i + 1 : i, IsDigit);
}

// The token that begins at start. What is none counts as one as far as jansson reads it: letters
// together, any other character by itself.
Token TokenAt(std::string_view line, std::size_t start) {
  const char first = line[start];
  if (first == '"') return StringAt(line, start);
  if (first == '-' || IsDigit(first)) return {start, EndOfNumber(line, start)};
  if (IsLetter(first)) return {start, PassOver(line, start, IsLetter)};
  return {start, PassOver(line, start + 1, ContinuesCharacter)};
}

// The token that a line ends with; an empty one at its end when it ends with a blank or is empty.
Token LastToken(std::string_view line) {
  for (std::size_t i = PassOver(line, 0, IsBlank); i < line.size();) {
    const Token token = TokenAt(line, i);
    if (token.end == line.size()) return token;
    i = PassOver(line, token.end, IsBlank);
  }
  return {line.size(), line.size()};
}

// The offset at which jansson had read so many bytes. It does not count a NUL after a number or a
// word, which it passes over.
std::size_t OffsetOf(std::string_view text, std::size_t read) {
  std::size_t offset = 0;
  for (char last = '\0'; read > 0 && offset < text.size(); ++offset) {
    const bool is_passed_over = text[offset] == '\0' && (IsDigit(last) || IsLetter(last));
    last = text[offset];
    if (!is_passed_over) --read;
  }
  return offset;
}

}  // namespace

Position LocateError(std::string_view text, const json_error_t& error) {
  text = WithoutByteOrderMark(text);
  // Of texts beyond 2 GiB, error.position is negative.
  const std::size_t end = OffsetOf(text, static_cast<unsigned>(error.position));
  std::string_view read = text.substr(0, end);
  const bool is_nul = !read.empty() && read.back() == '\0';  // jansson takes it for the end
  // No token holds a line end: those before the last line need not be looked at. Only a broken
  // escape is read with the line end after it.
  if (!read.empty() && read.back() == '\n') read.remove_suffix(1);
  const std::size_t line_end = read.rfind('\n');
  const std::size_t line_start = line_end == std::string_view::npos ? 0 : line_end + 1;
  const Token token = LastToken(read.substr(line_start));

  // Outside of a string, the end of the text and what is not UTF-8 come after the last token.
  std::size_t offset = line_start + token.start;
  const auto code = json_error_code(&error);
  if (!token.is_open_string && !is_nul) {
    if (code == json_error_premature_end_of_input) offset = text.size();
    if (code == json_error_invalid_utf8) offset = end;
  }
  return PositionCounter(text).At(offset);
}

}  // namespace ostrafel
