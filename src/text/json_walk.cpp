// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/json_walk.h"

#include <iterator>
#include <nlohmann/json.hpp>

namespace ostrafel {

namespace {

using nlohmann::json;

// Gives the parser the text byte by byte. The parser's copies of it all move the one place that is
// outside of them, and so show how far the parser has read. A NUL is given as a blank: jansson
// passes over one that follows a number or a word, while this parser would take it for the end.
class Reader {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = char;

  explicit Reader(const char** place) : place_(place) {}
  char operator*() const { return **place_ == '\0' ? ' ' : **place_; }
  Reader& operator++() {
    ++*place_;
    return *this;
  }
  bool operator==(const Reader& other) const { return *place_ == *other.place_; }
  bool operator!=(const Reader& other) const { return !(*this == other); }

 private:
  const char** place_;
};

// What the parser calls for each token, when it has read the token and nothing after it; after a
// number, whose end shows in what follows only, one byte more.
class TokenEvents {
 public:
  TokenEvents(std::string_view text, const char* const* place, JsonVisitor* visitor)
      : text_(text), place_(place), visitor_(visitor) {}

  // NOLINTBEGIN(readability-identifier-naming): the parser's names
  bool null() { return Scalar(); }
  bool boolean(bool /*value*/) { return Scalar(); }
  bool number_integer(json::number_integer_t /*value*/) { return Number(); }
  bool number_unsigned(json::number_unsigned_t /*value*/) { return Number(); }
  bool number_float(json::number_float_t /*value*/, const std::string& /*text*/) {
    return Number();
  }
  bool string(const std::string& /*value*/) { return Scalar(); }
  static bool binary(const json::binary_t& /*value*/) { return false; }  // no text holds one
  bool key(const std::string& name) {
    visitor_->OnName(name, TakeToken());
    return true;
  }
  bool start_object(std::size_t /*size*/) { return Open(false); }
  bool start_array(std::size_t /*size*/) { return Open(true); }
  bool end_object() { return Close(); }
  bool end_array() { return Close(); }
  static bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                          const json::exception& /*error*/) {
    return false;
  }
  // NOLINTEND(readability-identifier-naming)

 private:
  // Between two tokens there is nothing but blanks, and "," or ":".
  std::size_t TakeToken() {
    std::size_t start = end_;
    while (IsBetweenTokens(text_[start])) ++start;
    end_ = static_cast<std::size_t>(*place_ - text_.data());
    return start;
  }

  static bool IsBetweenTokens(char c) {
    return c == ' ' || c == '\n' || c == ',' || c == ':' || c == '\t' || c == '\r' || c == '\0';
  }

  bool Scalar() {
    visitor_->OnScalar(TakeToken());
    return true;
  }

  bool Number() {
    const bool goes_on = Scalar();
    const char last = text_[end_ - 1];
    if (last < '0' || last > '9') --end_;  // every number ends with a digit
    return goes_on;
  }

  bool Open(bool is_array) {
    visitor_->OnOpen(is_array, TakeToken());
    return true;
  }

  bool Close() {
    (void)TakeToken();
    visitor_->OnClose();
    return true;
  }

  std::string_view text_;
  const char* const* place_;
  std::size_t end_ = 0;  // of the last token
  JsonVisitor* visitor_;
};

}  // namespace

void WalkJson(std::string_view text, JsonVisitor* visitor) {
  const char* place = text.data();
  const char* end = text.data() + text.size();
  TokenEvents events(text, &place, visitor);
  (void)json::sax_parse(Reader(&place), Reader(&end), &events);
}

}  // namespace ostrafel
