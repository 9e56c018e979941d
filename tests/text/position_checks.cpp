// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/position_checks.h"

#include <jansson.h>

#include <cstddef>
#include <map>
#include <set>
#include <vector>

#include "document/document.h"
#include "text/json_positions.h"

namespace ostrafel {

namespace {

constexpr std::size_t kNowhere = std::string::npos;

std::string Show(const Position& position) {
  return std::to_string(position.line) + ":" + std::to_string(position.column);
}

bool AreSame(const Position& a, const Position& b) {
  return a.line == b.line && a.column == b.column;
}

bool IsBefore(const Position& a, const Position& b) {
  return a.line < b.line || (a.line == b.line && a.column < b.column);
}

// A text without its byte-order mark, by lines.
class Lines {
 public:
  explicit Lines(std::string_view text) : text_(text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '\n') starts_.push_back(i + 1);
    }
  }

  // The text from a position on; null data when there is no such position.
  [[nodiscard]] std::string_view From(const Position& position) const {
    if (position.line == 0 || position.line > starts_.size() || position.column == 0) return {};
    std::size_t offset = starts_[position.line - 1];
    for (std::size_t column = 1; column < position.column; ++column) {
      if (offset == text_.size() || text_[offset] == '\n') return {};
      ++offset;
      while (offset < text_.size() && (static_cast<unsigned char>(text_[offset]) >> 6U) == 2) {
        ++offset;
      }
    }
    return text_.substr(offset);
  }

 private:
  std::string_view text_;
  std::vector<std::size_t> starts_ = {0};
};

// The value that a text begins with; null when it begins with none.
Document FirstValue(std::string_view text) {
  constexpr std::string_view begins_no_value = " \t\r\n";
  if (text.empty() || begins_no_value.find(text[0]) != kNowhere) return nullptr;
  return Document(
      json_loadb(text.data(), text.size(), JSON_DECODE_ANY | JSON_DISABLE_EOF_CHECK, nullptr));
}

struct Value {
  json_t* value;
  const char* name;  // null for an element and the root
};
using Values = std::map<std::string, Value>;  // by pointer

std::string Child(const std::string& pointer, const std::string& name) {
  std::string child = pointer + "/";
  for (const char c : name) {
    if (c == '~') {
      child += "~0";
    } else if (c == '/') {
      child += "~1";
    } else {
      child += c;
    }
  }
  return child;
}

void CollectValues(const std::string& pointer, const Value& self, Values* values) {
  values->emplace(pointer, self);
  for (std::size_t i = 0; i < json_array_size(self.value); ++i) {
    CollectValues(Child(pointer, std::to_string(i)), {json_array_get(self.value, i), nullptr},
                  values);
  }
  const char* name = nullptr;
  json_t* value = nullptr;
  json_object_foreach(self.value, name, value) {
    CollectValues(Child(pointer, name), {value, name}, values);
  }
}

bool IsString(const json_t* value, const char* text) {
  return json_is_string(value) && std::string(json_string_value(value)) == text;
}

std::string ValueFault(const Lines& lines, const Value& expected, const ValuePosition& found) {
  const Document value = FirstValue(lines.From(found.value));
  if (json_equal(value.get(), expected.value) == 0) return "another value";
  if (expected.name == nullptr) {
    return AreSame(found.name, found.value) ? "" : "a name where there is none";
  }
  return IsString(FirstValue(lines.From(found.name)).get(), expected.name) ? "" : "another name";
}

std::string ValuesFault(std::string_view text, const Lines& lines, const Values& values,
                        const std::map<std::string, ValuePosition>& positions) {
  if (positions.size() != values.size()) {
    return std::to_string(positions.size()) + " of " + std::to_string(values.size()) + " values";
  }
  for (const auto& [pointer, found] : positions) {
    const std::string fault = ValueFault(lines, values.at(pointer), found);
    if (!fault.empty()) return pointer + " at " + Show(found.value) + ": " + fault;
  }
  std::set<std::string> few = {"/no such", "/0/no such", "no pointer"};
  std::size_t count = 0;
  for (const auto& [pointer, value] : values) {
    if (++count % 3 == 0) few.insert(pointer);
  }
  for (const auto& [pointer, found] : LocateValues(text, few)) {
    const auto& all = positions.find(pointer);
    if (all == positions.end()) continue;  // a text may have a member "no such"
    if (!AreSame(found.value, all->second.value) || !AreSame(found.name, all->second.name)) {
      return pointer + " is elsewhere when few are looked for";
    }
    few.erase(pointer);
  }
  for (const std::string& pointer : few) {
    if (values.count(pointer) != 0) return pointer + " is not found when few are looked for";
  }
  return "";
}

std::string DuplicateFault(const Lines& lines, const Values& values,
                           const std::map<std::string, ValuePosition>& positions,
                           const DuplicateMember& duplicate) {
  const auto value = values.find(duplicate.pointer);
  if (value == values.end() || value->second.name == nullptr) return "no member";
  if (duplicate.names.size() < 2) return "one place";
  for (std::size_t i = 0; i < duplicate.names.size(); ++i) {
    if (i > 0 && !IsBefore(duplicate.names[i - 1], duplicate.names[i])) return "not in order";
    const Document name = FirstValue(lines.From(duplicate.names[i]));
    if (!IsString(name.get(), value->second.name)) return "another name";
  }
  const Position last = positions.at(duplicate.pointer).name;
  return AreSame(duplicate.names.back(), last) ? "" : "another last place";
}

std::string DuplicatesFault(std::string_view text, std::string_view unmarked, const Lines& lines,
                            const Values& values,
                            const std::map<std::string, ValuePosition>& positions) {
  const std::vector<DuplicateMember> duplicates = FindDuplicateMembers(text);
  const Document strict(
      json_loadb(unmarked.data(), unmarked.size(), JSON_REJECT_DUPLICATES, nullptr));
  if (duplicates.empty() != (strict != nullptr)) return "duplicates unlike jansson's";
  std::set<std::string> pointers;
  for (const DuplicateMember& duplicate : duplicates) {
    std::string fault = DuplicateFault(lines, values, positions, duplicate);
    if (!pointers.insert(duplicate.pointer).second) fault = "twice in the list";
    if (!fault.empty()) return "duplicate " + duplicate.pointer + ": " + fault;
  }
  return "";
}

std::string ErrorFault(std::string_view text, const Lines& lines, const json_error_t& error) {
  const Position position = LocateError(text, error);
  const std::string fault = "error at " + Show(position) + ", " + error.text + ": ";
  const std::string message = error.text;
  // A line end in an escape counts for jansson, but the string begins before it.
  const bool is_line_escaped = message.rfind("invalid escape", 0) == 0 && error.column == 0;
  const std::size_t line = static_cast<std::size_t>(error.line) - (is_line_escaped ? 1 : 0);
  if (position.line != line) return fault + "another line";
  const std::string_view rest = lines.From(position);
  if (rest.data() == nullptr) return fault + "outside of the text";
  if (json_error_code(&error) == json_error_invalid_utf8) return "";
  const std::size_t quoted = message.find("near '");
  if (quoted == kNowhere) {
    const bool is_at_end = message.find("near end of file") != kNowhere;
    const bool is_nul = !rest.empty() && rest[0] == '\0';  // jansson calls this the end, too
    return is_at_end && !rest.empty() && !is_nul ? fault + "not the end" : "";
  }
  const std::string token = message.substr(quoted + 6, message.size() - quoted - 7);
  return rest.substr(0, token.size()) == token ? "" : fault + "another token";
}

}  // namespace

std::string PositionFault(std::string_view text) {
  const std::string_view mark = "\xEF\xBB\xBF";
  const std::string_view unmarked =
      text.substr(text.substr(0, mark.size()) == mark ? mark.size() : 0);
  const Lines lines(unmarked);
  json_error_t error = {};
  const Document root(json_loadb(unmarked.data(), unmarked.size(), 0, &error));
  if (!root) {
    // Whatever these find must do no harm.
    (void)LocateValues(text, {"", "/0", "/A", "/A/A", "/0/0", "/"});
    (void)FindDuplicateMembers(text);
    return ErrorFault(text, lines, error);
  }
  Values values;
  CollectValues("", {root.get(), nullptr}, &values);
  std::set<std::string> pointers;
  for (const auto& [pointer, value] : values) pointers.insert(pointer);
  const std::map<std::string, ValuePosition> positions = LocateValues(text, pointers);
  std::string fault = ValuesFault(text, lines, values, positions);
  if (fault.empty()) fault = DuplicatesFault(text, unmarked, lines, values, positions);
  return fault;
}

}  // namespace ostrafel
