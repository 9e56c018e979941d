// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The questions of store/server.h. A search first lists what it found, because take may change the
// store.
#include "memory/memory_server.h"
#include "memory/search.h"
#include "store/server.h"

namespace ostrafel {

namespace {

// What key holds; null when there is nothing.
const Stored* Find(const Server& server, const std::string& key) {
  const auto found = server.keys.find(UpToNul(key));
  return found == server.keys.end() ? nullptr : &found->second;
}

unsigned TakeEach(const std::vector<std::string>& names, const TakeName& take) {
  for (const std::string& name : names) {
    if (take(name) == 0) return 0;
  }
  return 1;
}

}  // namespace

KeyType KeyTypeOf(const Stored& value) {
  if (std::holds_alternative<Hash>(value)) return KeyType::kHash;
  return std::holds_alternative<List>(value) ? KeyType::kList : KeyType::kOther;
}

std::optional<KeyType> AskType(Server* server, const std::string& key) {
  const Stored* stored = Find(*server, key);
  return stored == nullptr ? KeyType::kNone : KeyTypeOf(*stored);
}

std::optional<std::string> AskFirstElement(Server* server, const std::string& key) {
  const List* list = std::get_if<List>(Find(*server, key));
  if (list == nullptr) return std::nullopt;
  return list->front();
}

bool AskFieldExists(Server* server, const std::string& key, const std::string& field) {
  const Hash* hash = std::get_if<Hash>(Find(*server, key));
  return hash != nullptr && hash->find(UpToNul(field)) != hash->end();
}

unsigned FindKeys(Server* server, const std::string& pattern, const TakeName& take) {
  ++server->searches;
  return TakeEach(MatchingNames(server->keys, UpToNul(pattern)), take);
}

unsigned FindFields(Server* server, const std::string& key, const std::string& pattern,
                    const TakeName& take) {
  const Stored* stored = Find(*server, key);
  if (stored == nullptr) return 1;
  const Hash* hash = std::get_if<Hash>(stored);
  return hash == nullptr ? 0 : TakeEach(MatchingNames(*hash, UpToNul(pattern)), take);
}

}  // namespace ostrafel
