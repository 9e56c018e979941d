// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

#include "diff/change_plan.h"
#include "diff/comparison.h"
#include "diff/report.h"
#include "diff/resources.h"
#include "layout/record_parts.h"
#include "text/utf8.h"
#include "tool/color.h"

namespace ostrafel {

namespace {

enum class Sign { kBoth = ' ', kStored = '-', kWanted = '+' };

// The differences of one member of a hash, such as a scalar that became an object, or of one
// element of a list.
using Member = std::vector<const Difference*>;

// The members of a key that differ: of a hash by name, of a list in order.
std::vector<Member> MembersOf(const KeyChange& change) {
  std::vector<Member> members;
  std::map<std::string, Member> by_name;
  for (const Difference* at = change.begin; at != change.end; ++at) {
    if (const std::string* field = std::get_if<std::string>(&at->record)) {
      by_name[MemberOfField(at->key, *field)].push_back(at);
    } else {
      members.push_back({at});
    }
  }
  for (auto& [name, member] : by_name) members.push_back(std::move(member));
  return members;
}

// The field of a difference, or one of the two indexes of an element.
std::string NameOf(const Difference& difference, std::size_t Element::*index) {
  if (const Element* element = std::get_if<Element>(&difference.record)) {
    return std::to_string(element->*index);
  }
  return std::get<std::string>(difference.record);
}

class TextWriter {
 public:
  TextWriter(const DiffOptions& options, const DiffReport& report)
      : options_(options), report_(report), has_colors_(HasColors(options.color)) {}

  std::string Write();

 private:
  void WriteKey(const KeyChange& change);
  void WriteWholeKey(const Difference& difference);
  void WriteMember(const Member& member);
  void WriteHeading(Sign sign, KeyType type, const std::string& key);
  void WritePlace(const Difference& difference);
  void WriteRecord(Sign sign, const std::string& name, const std::string& value);
  void WriteAll(Sign sign, const Server& store, const std::string& key);
  void WriteLine(Sign sign, const std::string& indent, const std::string& line);

  const DiffOptions& options_;
  const DiffReport& report_;
  bool has_colors_;
  std::string text_;
};

void TextWriter::WriteLine(Sign sign, const std::string& indent, const std::string& line) {
  const std::string signed_line = std::string(1, static_cast<char>(sign)) + " " + line;
  text_ += indent;
  if (has_colors_ && sign != Sign::kBoth) {
    text_ += Colored(signed_line, sign == Sign::kStored ? kRed : kGreen);
  } else {
    text_ += signed_line;
  }
  text_ += '\n';
}

void TextWriter::WriteHeading(Sign sign, KeyType type, const std::string& key) {
  WriteLine(sign, "", std::string(NameOf(type)) + "  " + Printable(key));
}

// "file:line: pointer", as compilers have it; without the line where the file has nothing of it.
void TextWriter::WritePlace(const Difference& difference) {
  if (!difference.place) return;
  const TreePlace& place = *difference.place;
  std::string locus = Printable(ShownPath(options_, place.path)) + ":";
  if (place.position.line != 0) locus += std::to_string(place.position.line) + ":";
  text_ += "    " + (has_colors_ ? Colored(locus, kBold) : locus);
  if (!place.pointer.empty()) text_ += " " + Printable(place.pointer);
  text_ += '\n';
}

void TextWriter::WriteRecord(Sign sign, const std::string& name, const std::string& value) {
  WriteLine(sign, "      ", Printable(name) + (value.empty() ? "" : "  " + Printable(value)));
}

void TextWriter::WriteAll(Sign sign, const Server& store, const std::string& key) {
  const Stored& value = store.keys.find(key)->second;
  if (const Hash* hash = std::get_if<Hash>(&value)) {
    for (const auto& [field, text] : *hash) WriteRecord(sign, field, text);
  } else if (const List* list = std::get_if<List>(&value)) {
    for (std::size_t i = 0; i < list->size(); ++i) WriteRecord(sign, std::to_string(i), (*list)[i]);
  }
}

void TextWriter::WriteWholeKey(const Difference& difference) {
  const std::string& key = difference.key;
  if (difference.change != Change::kMissing) {
    WriteHeading(Sign::kStored, KeyTypeOf(report_.stored.keys.find(key)->second), key);
    if (difference.change == Change::kExtra) WritePlace(difference);
    WriteAll(Sign::kStored, report_.stored, key);
  }
  if (difference.change != Change::kExtra) {
    WriteHeading(Sign::kWanted, difference.type, key);
    WritePlace(difference);
    WriteAll(Sign::kWanted, report_.wanted, key);
  }
}

void TextWriter::WriteMember(const Member& member) {
  const auto placed = std::find_if(member.begin(), member.end(), [](const Difference* difference) {
    return difference->place.has_value();
  });
  if (placed != member.end()) WritePlace(**placed);
  for (const Difference* at : member) {
    if (at->stored) WriteRecord(Sign::kStored, NameOf(*at, &Element::stored_index), *at->stored);
  }
  for (const Difference* at : member) {
    if (at->wanted) WriteRecord(Sign::kWanted, NameOf(*at, &Element::wanted_index), *at->wanted);
  }
}

void TextWriter::WriteKey(const KeyChange& change) {
  const Difference& first = *change.begin;
  if (std::holds_alternative<WholeKey>(first.record)) return WriteWholeKey(first);
  WriteHeading(Sign::kBoth, first.type, first.key);
  for (const Member& member : MembersOf(change)) WriteMember(member);
}

std::string TextWriter::Write() {
  std::vector<std::pair<std::string, KeyChange>> changes;
  for (const KeyChange& change : GroupByKey(report_.differences)) {
    changes.emplace_back(ResourceOf(change.begin->key, report_.stored, report_.wanted), change);
  }
  std::stable_sort(changes.begin(), changes.end(), [](const auto& a, const auto& b) {
    // A resource comes before its parts, whose keys have signs in front.
    const bool a_is_part = a.first != a.second.begin->key;
    const bool b_is_part = b.first != b.second.begin->key;
    return std::tie(a.first, a_is_part) < std::tie(b.first, b_is_part);
  });
  for (const auto& [resource, change] : changes) WriteKey(change);
  return text_ + DiffSummary(report_) + "\n";
}

}  // namespace

std::string DiffText(const DiffOptions& options, const DiffReport& report) {
  if (report.applied) return DiffSummary(report) + "\n";
  return TextWriter(options, report).Write();
}

}  // namespace ostrafel
