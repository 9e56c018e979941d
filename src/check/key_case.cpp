// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/key_case.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "layout/resource_id.h"
#include "text/json_pointer.h"
#include "tool/quoted.h"

namespace ostrafel {

namespace {

// Not tolower, which is free to know more letters than ASCII's.
std::string Fold(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return text;
}

// Key -> its folded form, of the keys that share this form with another. Borrows the keys.
using Clashes = std::unordered_map<std::string_view, std::string>;

// Hardly any keys clash: only hashes of folded keys are kept of them all.
Clashes ClashesOf(const Server& store) {
  std::unordered_map<std::size_t, std::size_t> counts;
  counts.reserve(store.keys.size());
  std::hash<std::string> hash;
  for (const auto& [key, stored] : store.keys) ++counts[hash(Fold(key))];
  Clashes clashes;
  std::unordered_map<std::string, std::size_t> sizes;
  for (const auto& [key, stored] : store.keys) {
    std::string folded = Fold(key);
    if (counts[hash(folded)] == 1) continue;
    ++sizes[folded];
    clashes.emplace(key, std::move(folded));
  }
  for (auto clash = clashes.begin(); clash != clashes.end();) {
    clash = sizes[clash->second] == 1 ? clashes.erase(clash) : std::next(clash);
  }
  return clashes;
}

// A clashing key, where it is written first.
struct Writer {
  std::string_view key;
  std::string above;  // the nearest key above it; empty when there is none
  Place place;
};

// The nearest stored key that key goes on from, after a "/" or a "#".
std::string KeyAbove(const Server& store, const std::string& key) {
  for (std::size_t end = key.find_last_of("/#"); end != std::string::npos && end != 0;
       end = key.find_last_of("/#", end - 1)) {
    std::string above = key.substr(0, end);
    if (store.keys.find(above) != store.keys.end()) return above;
  }
  return {};
}

Writer WriterOf(const Survey& survey, const Subject& subject, std::size_t i, std::string_view key) {
  const Node& node = subject.outline[i];
  if (i == 0) return {key, KeyAbove(survey.store, node.key), PlaceOf(survey, {subject.file, ""})};
  if (node.has_own_id) {
    const std::string pointer = ChildPointer(PointerOf(subject.outline, i), IdMember);
    return {key, KeyAbove(survey.store, node.key), PlaceOf(survey, subject, pointer)};
  }
  return {key, subject.outline[node.parent].key, PlaceOf(survey, subject, i, Spot::kName)};
}

// Who writes the clashing keys, in the order of the load.
std::vector<Writer> WritersOf(const Survey& survey, const Clashes& clashes) {
  std::vector<Writer> writers;
  std::unordered_map<std::string_view, bool> is_known;
  for (std::size_t file = 0; file < survey.files.size(); ++file) {
    const std::optional<Subject> subject = ReadSubject(survey, file);
    if (!subject) continue;
    const std::vector<bool> is_stored = StoredNodes(survey, *subject);
    for (std::size_t i = 0; i < subject->outline.size(); ++i) {
      const Node& node = subject->outline[i];
      const bool has_key = node.kind == NodeKind::kObject || node.kind == NodeKind::kArray;
      if (!has_key || !is_stored[i]) continue;
      const auto clash = clashes.find(node.key);
      if (clash == clashes.end() || std::exchange(is_known[clash->first], true)) continue;
      writers.push_back(WriterOf(survey, *subject, i, clash->first));
    }
  }
  return writers;
}

// The keys of one folded form so far. Keys whose keys above differ in case differ because of these,
// and are no pair.
class Group {
 public:
  /// The writer of an earlier key that this one makes a pair with, or null; remembers the writer.
  const Writer* Take(const Writer& writer) {
    const Writer*& same = by_above_[writer.above];
    const Writer* earlier = same;
    if (earlier == nullptr && HasOtherLength(first_, writer)) earlier = first_;
    if (earlier == nullptr && HasOtherLength(other_, writer)) earlier = other_;
    if (same == nullptr) same = &writer;
    if (first_ == nullptr) {
      first_ = &writer;
    } else if (other_ == nullptr && HasOtherLength(first_, writer)) {
      other_ = &writer;
    }
    return earlier;
  }

 private:
  // Keys above that differ in length are no such pair: below the shorter one begins the difference.
  static bool HasOtherLength(const Writer* earlier, const Writer& writer) {
    return earlier != nullptr && earlier->above.size() != writer.above.size();
  }

  std::unordered_map<std::string, const Writer*> by_above_;
  const Writer* first_ = nullptr;
  const Writer* other_ = nullptr;  // the first whose key above has another length than first_'s
};

}  // namespace

void CheckKeyCase(const Survey& survey, Findings* findings) {
  const Clashes clashes = ClashesOf(survey.store);
  if (clashes.empty()) return;
  std::unordered_map<std::string_view, Group> groups;
  const std::vector<Writer> writers = WritersOf(survey, clashes);
  for (const Writer& writer : writers) {
    const Writer* earlier = groups[clashes.at(writer.key)].Take(writer);
    if (earlier == nullptr) continue;
    const std::string key(writer.key);
    findings->push_back({RuleId::kKeyCase,
                         writer.place,
                         key,
                         Quoted(key) + " differs from " + Quoted(std::string(earlier->key)) +
                             " in upper and lower case only, and both are kept, one beside the "
                             "other",
                         {{earlier->place, "the other spelling"}}});
  }
}

}  // namespace ostrafel
