// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/store_keys.h"

#include <algorithm>

#include "base/affixes.h"
#include "layout/layout.h"
#include "live/key_reading.h"
#include "memory/glob.h"

namespace ostrafel {

namespace {

// Learns what a value says of its key. Makes entries for children that keys does not have.
void Learn(const Stored& value, KeyEntry* entry, StoreKeys* keys) {
  KeyFacts& facts = entry->second;
  const Look look = LookAt(entry->first, value);
  static_cast<ValueFacts&>(facts) = look.facts;
  facts.is_read = true;
  facts.children.clear();
  for (const Look::Readings& readings : look.records) {
    for (const RecordParts& parts : readings) {
      KeyEntry& child = *keys->try_emplace(parts.target).first;
      const bool is_object = parts.marker == ObjectMarker;
      if (!child.second.is_read && child.second.type == KeyType::kNone) {
        child.second.type = is_object ? KeyType::kHash : KeyType::kList;
      }
      facts.children.push_back({&child, is_object, parts.is_in_place, &parts == &readings.front()});
    }
  }
}

// What a reading of a record of an object points to.
struct Target {
  const KeyEntry* entry;  // null when nothing is known of it
  bool is_in_place;
};

// The place of the target that the store has, as ChosenReading; count becomes how many there are.
std::optional<std::size_t> ChooseTarget(const std::vector<Target>& targets, std::size_t* count) {
  std::optional<std::size_t> chosen;
  *count = 0;
  for (std::size_t i = 0; i < targets.size(); ++i) {
    if (targets[i].entry == nullptr) continue;
    const KeyFacts& facts = targets[i].entry->second;
    if (!facts.takes_own_key && (!targets[i].is_in_place || facts.type != KeyType::kHash)) continue;
    if (!chosen) chosen = i;
    ++*count;
  }
  if (!chosen && targets.front().is_in_place) {
    chosen = 0;
    *count = 1;
  }
  return chosen;
}

// Leaves of the children of each record with several readings the chosen one, if there is one.
void ChooseChildren(KeyFacts* facts) {
  std::vector<Child> chosen;
  const std::vector<Child>& children = facts->children;
  for (std::size_t begin = 0, end = 0; begin < children.size(); begin = end) {
    end = begin + 1;
    while (end < children.size() && !children[end].is_first) ++end;
    std::size_t place = begin;
    if (end - begin > 1) {
      std::vector<Target> targets;
      for (std::size_t i = begin; i < end; ++i) {
        targets.push_back({children[i].entry, children[i].is_in_place});
      }
      std::size_t count = 0;
      const std::optional<std::size_t> target = ChooseTarget(targets, &count);
      if (!target) continue;
      place += *target;
    }
    chosen.push_back(children[place]);
  }
  facts->children = std::move(chosen);
}

// What is only known when all is read.
void Conclude(StoreKeys* keys) {
  for (KeyEntry& entry : *keys) {
    ChooseChildren(&entry.second);
    for (const Child& child : entry.second.children) {
      if (child.is_in_place && StandsHere(*child.entry, child.is_object, true)) {
        child.entry->second.has_place = true;
      }
    }
  }
}

// Reads these keys, each as what its type says, and learns of them. Returns those that hold
// something else.
std::vector<KeyEntry*> ReadAs(const KeySource& source, const std::vector<KeyEntry*>& entries,
                              StoreKeys* keys) {
  std::vector<KeyToRead> to_read;
  to_read.reserve(entries.size());
  for (const KeyEntry* entry : entries) to_read.push_back({&entry->first, entry->second.type});
  std::vector<KeyEntry*> others;
  source.read(to_read, [&](std::size_t place, std::optional<Stored> value) {
    if (value) {
      Learn(*value, entries[place], keys);
    } else {
      others.push_back(entries[place]);
    }
  });
  return others;
}

// Reads these keys and learns of them, whatever they hold.
void ReadAll(const KeySource& source, const std::vector<KeyEntry*>& entries, StoreKeys* keys) {
  std::vector<KeyEntry*> others = ReadAs(source, entries, keys);
  for (KeyEntry* entry : others) {
    KeyType& type = entry->second.type;
    type = type == KeyType::kHash ? KeyType::kList : KeyType::kHash;
  }
  for (KeyEntry* entry : ReadAs(source, others, keys)) Learn(OtherType(), entry, keys);
}

// Reads what the records of these keys point to, and so on, until nothing new comes.
void FollowRecords(const KeySource& source, std::vector<KeyEntry*> entries, StoreKeys* keys) {
  while (!entries.empty()) {
    ReadAll(source, entries, keys);
    std::vector<KeyEntry*> next;
    for (const KeyEntry* entry : entries) {
      for (const Child& child : entry->second.children) {
        if (!child.entry->second.is_read) next.push_back(child.entry);
      }
    }
    std::sort(next.begin(), next.end());
    next.erase(std::unique(next.begin(), next.end()), next.end());
    entries = std::move(next);
  }
}

}  // namespace

std::vector<std::string> PatternsOf(const ExportScope& scope) {
  if (!scope.is_whole) return {};
  const std::string below = SubtreeStart(scope.uri);
  const std::string parts = DerivedKey(scope.uri, "");
  // A server looks through all of its keys for each pattern, so that one is better than two.
  if (EndsWith(parts, below)) return {"*" + EscapeGlob(below) + "*"};
  return {EscapeGlob(below) + "*", EscapeGlob(parts) + "*"};
}

bool IsInScope(const ExportScope& scope, const std::string& key) {
  if (key == scope.uri) return true;
  return scope.is_whole &&
         (StartsWith(key, SubtreeStart(scope.uri)) || StartsWith(key, DerivedKey(scope.uri, "")));
}

bool IsResource(const KeyEntry& entry) {
  return entry.second.type == KeyType::kHash &&
         (entry.second.takes_own_key || !IsDerivedKey(entry.first));
}

bool IsLost(const KeyEntry& entry) {
  const KeyFacts& facts = entry.second;
  const bool is_wanted = facts.is_in_scope || (facts.is_reached && IsDerivedKey(entry.first));
  return is_wanted && facts.type != KeyType::kNone && !facts.is_written;
}

bool StandsHere(const KeyEntry& part, bool is_object, bool is_in_place) {
  return part.second.type == (is_object ? KeyType::kHash : KeyType::kList) &&
         (is_in_place || !part.second.has_place);
}

std::size_t ChosenReading(const StoreKeys& keys, RecordReadings* readings) {
  std::vector<Target> targets;
  for (const RecordParts& parts : readings->parts) {
    const auto target = keys.find(parts.target);
    targets.push_back({target == keys.end() ? nullptr : &*target, parts.is_in_place});
  }
  std::size_t count = 0;
  const std::optional<std::size_t> chosen = ChooseTarget(targets, &count);
  if (chosen) readings->likely = count;
  return chosen.value_or(0);
}

StoreKeys LearnKeys(const KeySource& source, const ExportScope& scope) {
  std::vector<std::string> names = {scope.uri};
  for (const std::string& pattern : PatternsOf(scope)) source.find(pattern, &names);
  StoreKeys keys;
  std::vector<KeyEntry*> resources;
  for (const std::string& name : names) {
    if (!IsInScope(scope, name)) continue;
    const auto [place, is_new] = keys.try_emplace(name);
    place->second.is_in_scope = true;
    if (!is_new || (IsDerivedKey(name) && name != scope.uri)) continue;
    place->second.type = KeyType::kHash;
    resources.push_back(&*place);
  }
  std::vector<std::string>().swap(names);
  FollowRecords(source, resources, &keys);
  // Parts of nothing, among them perhaps hashes with a key of their own choice.
  std::vector<KeyEntry*> unreached;
  for (KeyEntry& entry : keys) {
    if (entry.second.is_read) continue;
    entry.second.type = KeyType::kHash;
    unreached.push_back(&entry);
  }
  FollowRecords(source, std::move(unreached), &keys);
  Conclude(&keys);
  return keys;
}

StoreKeys LearnKeys(redisContext* context, const ExportScope& scope) {
  const KeySource source = {[&](const std::string& pattern, std::vector<std::string>* names) {
                              ScanKeys(context, pattern, names);
                            },
                            [&](const std::vector<KeyToRead>& keys, const TakeKey& take) {
                              StreamKeys(context, keys, take);
                            }};
  return LearnKeys(source, scope);
}

}  // namespace ostrafel
