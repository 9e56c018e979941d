// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/memory_store.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <stdexcept>

#include "model/glob.h"

namespace model {
namespace {

Reply WrongType() {
  return ErrorReply("WRONGTYPE Operation against a key holding the wrong kind of value");
}

// What the key holds, when that is a `Kind`; else none.
template <typename Kind>
Kind* Find(Store& store, const std::string& key) {
  const auto found = store.find(key);
  return found == store.end() ? nullptr : std::get_if<Kind>(&found->second.value);
}

// True when the key exists and holds something else than a `Kind`.
template <typename Kind>
bool HoldsAnotherType(Store& store, const std::string& key) {
  return store.count(key) != 0 && Find<Kind>(store, key) == nullptr;
}

bool IsListed(const std::string& pattern, const std::string& name) {
  return pattern == "*" || MatchesGlob(pattern, name);
}

Reply MatchingKeys(const Store& store, const std::string& pattern) {
  std::vector<Reply> names;
  for (const auto& [key, stored] : store) {
    if (IsListed(pattern, key)) names.push_back(StringReply(key));
  }
  return ArrayReply(names);
}

// What follows the option word (MATCH), or the pattern that lists everything.
std::string PatternOption(const Command& command, std::size_t first_option) {
  for (std::size_t i = first_option; i + 1 < command.size(); i += 2) {
    if (command[i] == "MATCH") return command[i + 1];
  }
  return "*";
}

Reply RemoveKey(Store& store, const std::string& key) {
  return IntegerReply(static_cast<long long>(store.erase(key)));
}

Reply TypeOf(const Store& store, const std::string& key) {
  const auto found = store.find(key);
  if (found == store.end()) return StatusReply("none");
  if (std::holds_alternative<Hash>(found->second.value)) return StatusReply("hash");
  if (std::holds_alternative<List>(found->second.value)) return StatusReply("list");
  return StatusReply("string");
}

Reply FirstElement(Store& store, const std::string& key) {
  if (HoldsAnotherType<List>(store, key)) return WrongType();
  const List* list = Find<List>(store, key);
  return list == nullptr || list->empty() ? NilReply() : StringReply(list->front());
}

Reply ScanFields(Store& store, const std::string& key, const std::string& pattern) {
  if (HoldsAnotherType<Hash>(store, key)) return WrongType();
  std::vector<Reply> pairs;
  if (const Hash* hash = Find<Hash>(store, key)) {
    for (const auto& [field, value] : *hash) {
      if (!IsListed(pattern, field)) continue;
      pairs.push_back(StringReply(field));
      pairs.push_back(StringReply(value));
    }
  }
  return ArrayReply({StringReply("0"), ArrayReply(pairs)});
}

Reply HasField(Store& store, const std::string& key, const std::string& field) {
  if (HoldsAnotherType<Hash>(store, key)) return WrongType();
  const Hash* hash = Find<Hash>(store, key);
  return IntegerReply(hash != nullptr && hash->count(field) != 0 ? 1 : 0);
}

Reply RemoveElements(Store& store, const std::string& key, const std::string& value) {
  if (HoldsAnotherType<List>(store, key)) return WrongType();
  List* list = Find<List>(store, key);
  if (list == nullptr) return IntegerReply(0);
  const std::size_t before = list->size();
  list->erase(std::remove(list->begin(), list->end(), value), list->end());
  const std::size_t removed = before - list->size();
  if (list->empty()) store.erase(key);
  return IntegerReply(static_cast<long long>(removed));
}

Reply RemoveField(Store& store, const std::string& key, const std::string& field) {
  if (HoldsAnotherType<Hash>(store, key)) return WrongType();
  Hash* hash = Find<Hash>(store, key);
  if (hash == nullptr) return IntegerReply(0);
  const std::size_t removed = hash->erase(field);
  if (hash->empty()) store.erase(key);
  return IntegerReply(static_cast<long long>(removed));
}

Reply SetField(Store& store, const std::string& key, const std::string& field,
               const std::string& value) {
  if (HoldsAnotherType<Hash>(store, key)) return WrongType();
  if (store.count(key) == 0) store[key] = StoredValue{Hash{}};
  Hash& hash = *Find<Hash>(store, key);
  const bool added = hash.count(field) == 0;
  hash[field] = value;
  return IntegerReply(added ? 1 : 0);
}

Reply AppendElement(Store& store, const std::string& key, const std::string& value) {
  if (HoldsAnotherType<List>(store, key)) return WrongType();
  if (store.count(key) == 0) store[key] = StoredValue{List{}};
  List& list = *Find<List>(store, key);
  list.push_back(value);
  return IntegerReply(static_cast<long long>(list.size()));
}

std::string UpperCase(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

bool operator==(const StoredValue& left, const StoredValue& right) {
  return left.value == right.value;
}

Reply Execute(Store& store, const Command& command) {
  const std::string name = command.empty() ? "" : UpperCase(command[0]);
  const std::size_t size = command.size();
  if (name == "KEYS" && size == 2) return MatchingKeys(store, command[1]);
  if (name == "DEL" && size == 2) return RemoveKey(store, command[1]);
  if (name == "UNLINK" && size == 2) return RemoveKey(store, command[1]);
  if (name == "TYPE" && size == 2) return TypeOf(store, command[1]);
  if (name == "LINDEX" && size == 3 && command[2] == "0") return FirstElement(store, command[1]);
  if (name == "SCAN" && size >= 2 && size % 2 == 0) {
    return ArrayReply({StringReply("0"), MatchingKeys(store, PatternOption(command, 2))});
  }
  if (name == "HSCAN" && size >= 3 && size % 2 == 1) {
    return ScanFields(store, command[1], PatternOption(command, 3));
  }
  if (name == "HEXISTS" && size == 3) return HasField(store, command[1], command[2]);
  if (name == "LREM" && size == 4 && command[2] == "0") {
    return RemoveElements(store, command[1], command[3]);
  }
  if (name == "HDEL" && size == 3) return RemoveField(store, command[1], command[2]);
  if (name == "HSET" && size == 4) return SetField(store, command[1], command[2], command[3]);
  if (name == "RPUSH" && size == 3) return AppendElement(store, command[1], command[2]);
  throw std::invalid_argument("the memory store does not know this form of the command: " + name);
}

std::string Dump(const Store& store) {
  std::string text;
  for (const auto& [key, stored] : store) {
    if (const Hash* hash = std::get_if<Hash>(&stored.value)) {
      for (const auto& [field, value] : *hash) {
        text += "hash | " + key + " | " + field + " | " + value + "\n";
      }
    } else if (const List* list = std::get_if<List>(&stored.value)) {
      for (const std::string& value : *list) text += "list | " + key + " | " + value + "\n";
    } else {
      text += "string | " + key + " | " + std::get<std::string>(stored.value) + "\n";
    }
  }
  return text;
}

}  // namespace model
