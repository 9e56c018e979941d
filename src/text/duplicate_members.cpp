// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

#include "text/json_pointer.h"
#include "text/json_positions.h"
#include "text/json_walk.h"
#include "text/position_counter.h"

namespace ostrafel {

namespace {

// --- A look at all texts, fast -------------------------------------------------------------------

// The offset of the quote that ends the string whose first character is at start; the text's size
// when none does. Sets has_escape when the string holds a backslash.
std::size_t EndOfString(std::string_view text, std::size_t start, bool* has_escape) {
  std::size_t i = start;
  for (; i < text.size() && text[i] != '"'; ++i) {
    if (text[i] != '\\') continue;
    *has_escape = true;
    ++i;
  }
  return std::min(i, text.size());
}

// True when a colon comes next, but for blanks.
bool IsColonNext(std::string_view text, std::size_t start) {
  const std::size_t next = text.find_first_not_of(" \t\r\n", start);
  return next != std::string_view::npos && text[next] == ':';
}

// False when the members of each object have different names; true when they may not. Most texts
// have no duplicate member, and to see that takes much less than to parse them: a name counts as a
// number made of its bytes and its object, and no two of these numbers are equal.
bool MayHoldDuplicates(std::string_view text) {
  std::vector<std::size_t> names;
  std::vector<std::size_t> open;  // the objects and arrays around, each by its number
  std::size_t begun = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '{' || c == '[') {
      open.push_back(++begun);
    } else if (c == '}' || c == ']') {
      if (open.empty()) return true;
      open.pop_back();
    } else if (c == '"') {
      bool has_escape = false;
      const std::size_t end = EndOfString(text, i + 1, &has_escape);
      if (IsColonNext(text, end + 1)) {
        if (has_escape || open.empty()) return true;
        const std::size_t bytes = std::hash<std::string_view>()(text.substr(i + 1, end - i - 1));
        names.push_back(bytes + open.back() * 0x9E3779B9U);  // far apart for each object
      }
      i = end;
    }
  }
  std::sort(names.begin(), names.end());
  return std::adjacent_find(names.begin(), names.end()) != names.end();
}

// --- The exact look at the others ----------------------------------------------------------------

// Collects the duplicate members, each under a number that counts up. Those of an overwritten value
// have the numbers that were given while it was read.
class DuplicateFinder : public JsonVisitor {
 public:
  explicit DuplicateFinder(std::string_view text) : counter_(text) {}

  void OnName(const std::string& name, std::size_t offset) override {
    Open& object = open_.back();
    if (object.member != nullptr) object.member->second.end = next_number_;
    const auto [member, is_first] = object.members.try_emplace(name);
    object.member = &*member;
    const Position position = counter_.At(offset);
    if (is_first) {
      member->second.name = position;
    } else {
      AddPlace(&member->second, position);
    }
    member->second.begin = next_number_;
  }

  void OnScalar(std::size_t /*offset*/) override { CountElement(); }

  void OnOpen(bool is_array, std::size_t /*offset*/) override {
    CountElement();
    open_.push_back({is_array});
  }

  void OnClose() override { open_.pop_back(); }

  std::map<std::size_t, DuplicateMember> duplicates;  // by number

 private:
  struct Member {
    Position name = {};      // the first one
    std::size_t number = 0;  // in duplicates; 0 while the name stands once
    // The numbers that were given while its last value was read.
    std::size_t begin = 0;
    std::size_t end = 0;
  };
  struct Open {
    bool is_array;
    std::size_t elements = 0;
    std::unordered_map<std::string, Member> members = {};
    std::pair<const std::string, Member>* member = nullptr;  // the last one
  };

  void CountElement() {
    if (!open_.empty()) ++open_.back().elements;
  }

  void AddPlace(Member* member, Position position) {
    duplicates.erase(duplicates.lower_bound(member->begin), duplicates.lower_bound(member->end));
    if (member->number == 0) {
      member->number = next_number_++;
      duplicates[member->number] = {Pointer(), {member->name}};
    }
    duplicates[member->number].names.push_back(position);
  }

  // Of the member whose name was read.
  [[nodiscard]] std::string Pointer() const {
    std::string pointer;
    for (const Open& open : open_) {
      AppendStep(open.is_array ? std::to_string(open.elements - 1) : open.member->first, &pointer);
    }
    return pointer;
  }

  PositionCounter counter_;
  std::vector<Open> open_;
  std::size_t next_number_ = 1;
};

}  // namespace

std::vector<DuplicateMember> FindDuplicateMembers(std::string_view text) {
  text = WithoutByteOrderMark(text);
  std::vector<DuplicateMember> found;
  if (!MayHoldDuplicates(text)) return found;
  DuplicateFinder finder(text);
  WalkJson(text, &finder);
  for (auto& [number, duplicate] : finder.duplicates) found.push_back(std::move(duplicate));
  return found;
}

}  // namespace ostrafel
