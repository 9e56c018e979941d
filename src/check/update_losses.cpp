// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/update_losses.h"

#include <algorithm>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace ostrafel {

namespace {

// Field and value, or nothing and an element -> how many of it are lost.
using LostRecords = std::map<std::pair<std::string, std::string>, std::size_t>;

struct Difference {
  std::unordered_set<std::string> keys;
  std::unordered_map<std::string, LostRecords> records;  ///< Of keys that stay.
};

LostRecords LostOf(const Hash& before, const Hash& after) {
  LostRecords lost;
  for (const auto& [field, value] : before) {
    const auto found = after.find(field);
    if (found == after.end() || found->second != value) lost[{field, value}] = 1;
  }
  return lost;
}

LostRecords LostOf(const List& before, const List& after) {
  LostRecords lost;
  if (before == after) return lost;
  for (const std::string& element : before) ++lost[{"", element}];
  for (const std::string& element : after) {
    const auto found = lost.find({"", element});
    if (found != lost.end() && --found->second == 0) lost.erase(found);
  }
  return lost;
}

template <typename Kind>
LostRecords LostIf(const Stored& before, const Stored& after) {
  const Kind* a = std::get_if<Kind>(&before);
  const Kind* b = std::get_if<Kind>(&after);
  return a != nullptr && b != nullptr ? LostOf(*a, *b) : LostRecords();
}

Difference DifferenceOf(const Server& before, const Server& after) {
  Difference difference;
  for (const auto& [key, stored] : before.keys) {
    const auto found = after.keys.find(key);
    if (found == after.keys.end()) {
      difference.keys.insert(key);
      continue;
    }
    LostRecords lost = LostIf<Hash>(stored, found->second);
    lost.merge(LostIf<List>(stored, found->second));
    if (!lost.empty()) difference.records.emplace(key, std::move(lost));
  }
  return difference;
}

bool IsContainer(const Node& node) {
  return node.kind == NodeKind::kObject || node.kind == NodeKind::kArray;
}

// True when a value of the other kind is stored at the key of the node.
bool IsMixed(const Survey& survey, const Node& node) {
  const auto found = survey.store.keys.find(node.key);
  if (found == survey.store.keys.end()) return false;
  return std::holds_alternative<List>(found->second) != (node.kind == NodeKind::kArray);
}

bool IsEmpty(const json_t* value) {
  return json_is_array(value) ? json_array_size(value) == 0 : json_object_size(value) == 0;
}

// Finds the values of a difference in one document after the other.
class Search {
 public:
  Search(const Survey& survey, Difference difference)
      : survey_(survey), difference_(std::move(difference)) {}

  void Take(const Subject& subject) {
    for (std::size_t i = 0; i < subject.outline.size(); ++i) {
      if (!TakeKey(subject, i) && i != 0) TakeRecord(subject, i);
    }
  }

  [[nodiscard]] Losses TakeLosses() {
    const auto is_mixed = [&](const Loss& loss) { return losses_.mixed_keys.count(loss.key) != 0; };
    auto& values = losses_.values;
    values.erase(std::remove_if(values.begin(), values.end(), is_mixed), values.end());
    return std::move(losses_);
  }

 private:
  // True when the key of the node is lost.
  bool TakeKey(const Subject& subject, std::size_t index) {
    const Node& node = subject.outline[index];
    if (!IsContainer(node) || IsEmpty(node.value)) return false;
    const bool is_mixed = IsMixed(survey_, node);
    const bool is_lost = difference_.keys.count(node.key) != 0;
    if ((!is_mixed && !is_lost) || !IsStored(survey_, subject, index)) return false;
    if (is_mixed) losses_.mixed_keys.insert(node.key);
    if (is_lost && found_keys_.insert(node.key).second) {
      losses_.values.push_back(
          {{subject.file, index}, PlaceOf(survey_, subject, index), node.kind, node.key, true});
    }
    return is_lost;
  }

  void TakeRecord(const Subject& subject, std::size_t index) {
    const Node& node = subject.outline[index];
    const std::string& key = subject.outline[node.parent].key;
    const auto records = difference_.records.find(key);
    if (records == difference_.records.end()) return;
    Record record = RecordOf(subject.outline, index);
    const auto found = records->second.find({record.field, record.value});
    if (found == records->second.end() || !IsStored(survey_, subject, node.parent)) return;
    if (--found->second == 0) records->second.erase(found);
    losses_.values.push_back({{subject.file, index},
                              PlaceOf(survey_, subject, index),
                              node.kind,
                              key,
                              false,
                              node.name != nullptr ? node.name : "",
                              std::move(record)});
  }

  const Survey& survey_;
  Difference difference_;
  Losses losses_;
  std::unordered_set<std::string> found_keys_;
};

}  // namespace

Losses FindLosses(const Survey& survey) {
  if (!survey.updated) return {};
  Search search(survey, DifferenceOf(survey.store, *survey.updated));
  for (std::size_t i = 0; i < survey.files.size(); ++i) {
    const std::optional<Subject> subject = ReadSubject(survey, i);
    if (subject) search.Take(*subject);
  }
  return search.TakeLosses();
}

}  // namespace ostrafel
