// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The flushes of store/server.h. A key of another type refuses its commands; the others are carried
// out, as by a server that reads a whole pipeline.
#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>

#include "base/message.h"
#include "memory/memory_server.h"
#include "memory/search.h"
#include "store/server.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

// The value at key, made empty when there is none. Null when it is of another type.
template <typename Kind>
Kind* FindOrMake(Server* server, const char* key) {
  return std::get_if<Kind>(&server->keys.try_emplace(key, Kind()).first->second);
}

// Each of these carries out what waits for one key, and returns false when its type refuses that.

// HSET
bool SetFields(Server* server, const char* key, const std::pmr::vector<Field>& fields) {
  Hash* hash = FindOrMake<Hash>(server, key);
  if (hash == nullptr) return false;
  for (const auto& [name, value] : fields) hash->insert_or_assign(name, value);
  return true;
}

// RPUSH
bool AppendElements(Server* server, const char* key, const KeptStrings& values) {
  List* list = FindOrMake<List>(server, key);
  if (list == nullptr) return false;
  list->insert(list->end(), values.begin(), values.end());
  return true;
}

// Lets remove work on the value at key, if there is one; a value that is empty then goes.
template <typename Kind, typename Remove>
bool RemoveFrom(Server* server, const char* key, const Remove& remove) {
  const auto found = server->keys.find(std::string_view(key));
  if (found == server->keys.end()) return true;
  Kind* value = std::get_if<Kind>(&found->second);
  if (value == nullptr) return false;
  remove(value);
  if (value->empty()) server->keys.erase(found);
  return true;
}

// HDEL
bool RemoveFields(Server* server, const char* key, const KeptStrings& fields) {
  return RemoveFrom<Hash>(server, key, [&](Hash* hash) {
    for (const char* field : fields) hash->erase(field);
  });
}

// LREM: one pass over the list for all values, each of which would take one of its own.
bool RemoveElements(Server* server, const char* key, const KeptStrings& values) {
  const std::unordered_set<std::string_view> removed(values.begin(), values.end());
  const auto is_removed = [&](const std::string& element) { return removed.count(element) != 0; };
  return RemoveFrom<List>(server, key, [&](List* list) {
    list->erase(std::remove_if(list->begin(), list->end(), is_removed), list->end());
  });
}

// Carries out a whole batch with carry_out, one of the above.
template <typename Batch, typename CarryOut>
bool CarryOutAll(Server* server, const Batch& batch, const CarryOut& carry_out) {
  bool is_good = true;
  for (const auto& [key, values] : batch) is_good = carry_out(server, key, values) && is_good;
  return is_good;
}

unsigned Report(bool is_good, const char* message) {
  if (!is_good) PrintMessage("%s", message);
  return is_good ? 1 : 0;
}

}  // namespace

unsigned FlushRemovalBatch(Server* server) {
  PendingRemovals& batch = Store->RemovalBatch;
  for (const std::string& key : batch.keys) server->keys.erase(std::string(UpToNul(key)));
  const bool lists_are_good = CarryOutAll(server, batch.list_values, RemoveElements);
  const bool hashes_are_good = CarryOutAll(server, batch.hash_fields, RemoveFields);
  batch.clear();
  return Report(lists_are_good && hashes_are_good, RemovalFlushFailed);
}

unsigned FlushHashBatch(Server* server) {
  const bool is_good = CarryOutAll(server, Store->HashBatch, SetFields);
  Store->HashBatch.clear();
  return Report(is_good, HashFlushFailed);
}

unsigned FlushListBatch(Server* server) {
  const bool is_good = CarryOutAll(server, Store->ListBatch, AppendElements);
  Store->ListBatch.clear();
  return Report(is_good, ListFlushFailed);
}

}  // namespace ostrafel
