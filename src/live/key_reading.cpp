// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/key_reading.h"

#include <set>
#include <utility>

#include "base/affixes.h"
#include "connection/reply.h"

namespace ostrafel {

namespace {

// A SCAN looks at as many keys at a time, which takes a server less than a millisecond.
constexpr const char* kKeysInScan = "1000";

// No SCAN takes more steps than this: a server has room for 2^32 keys.
constexpr std::size_t kMostScanSteps = 5000000;

}  // namespace

std::vector<std::string> StringsOf(const redisReply& reply, const std::string& command) {
  RefuseError(reply, command);
  if (reply.type != REDIS_REPLY_ARRAY) RefuseReply(command);
  std::vector<std::string> strings;
  strings.reserve(reply.elements);
  for (std::size_t i = 0; i < reply.elements; ++i) {
    const redisReply& element = *reply.element[i];
    if (element.type != REDIS_REPLY_STRING) RefuseReply(command);
    strings.emplace_back(TextOf(element));
  }
  return strings;
}

Hash HashOf(std::vector<std::string> strings) {
  if (strings.size() % 2 != 0) RefuseReply("HGETALL");
  Hash hash;
  for (std::size_t i = 0; i < strings.size(); i += 2) {
    hash.insert_or_assign(std::move(strings[i]), std::move(strings[i + 1]));
  }
  return hash;
}

std::string TypeOf(const redisReply& reply) {
  RefuseError(reply, "TYPE");
  if (reply.type != REDIS_REPLY_STATUS) RefuseReply("TYPE");
  return std::string(TextOf(reply));
}

KeyType TypeNamed(std::string_view name) {
  if (name == "hash") return KeyType::kHash;
  return name == "list" ? KeyType::kList : KeyType::kOther;
}

void AppendRead(const std::string& key, KeyType type, LivePipeline* pipeline) {
  switch (type) {
    case KeyType::kNone:
    case KeyType::kHash:
      return pipeline->Append({"HGETALL", key});
    case KeyType::kList:
      return pipeline->Append({"LRANGE", key, "0", "-1"});
    case KeyType::kOther:
      return pipeline->Append({"TYPE", key});
  }
}

bool TakeRead(const redisReply& reply, KeyType type, Stored* value) {
  if (type == KeyType::kOther) {
    const std::string name = TypeOf(reply);
    if (name == "none") {
      *value = Hash();
    } else {
      *value = OtherType();
    }
    return name == "none" || TypeNamed(name) == KeyType::kOther;
  }
  if (reply.type == REDIS_REPLY_ERROR && IsWrongType(TextOf(reply))) return false;
  if (type == KeyType::kList) {
    *value = StringsOf(reply, "LRANGE");
  } else {
    *value = HashOf(StringsOf(reply, "HGETALL"));
  }
  return true;
}

bool IsWrongType(std::string_view error) { return StartsWith(error, "WRONGTYPE "); }

bool IsEmpty(const Stored& value) {
  if (const Hash* hash = std::get_if<Hash>(&value)) return hash->empty();
  const List* list = std::get_if<List>(&value);
  return list != nullptr && list->empty();
}

void ScanKeys(redisContext* context, const std::string& pattern, std::vector<std::string>* keys) {
  // Whatever happens to its keys meanwhile, a server gives no cursor twice before the last one.
  std::set<std::string> cursors;
  std::string cursor = "0";
  do {
    if (!cursors.insert(cursor).second || cursors.size() > kMostScanSteps) {
      throw std::runtime_error("Redis does not come to an end of listing its keys");
    }
    const Reply reply =
        AskServer(context, {"SCAN", cursor, "MATCH", pattern, "COUNT", kKeysInScan});
    RefuseError(*reply, "SCAN");
    if (reply->type != REDIS_REPLY_ARRAY || reply->elements != 2) RefuseReply("SCAN");
    if (reply->element[0]->type != REDIS_REPLY_STRING) RefuseReply("SCAN");
    cursor = TextOf(*reply->element[0]);
    for (std::string& key : StringsOf(*reply->element[1], "SCAN")) keys->push_back(std::move(key));
  } while (cursor != "0");
}

std::string TakeQueued(LivePipeline* pipeline, std::size_t commands) {
  std::string error;
  for (std::size_t i = 0; i < commands + 1; ++i) {  // and MULTI
    const Reply reply = pipeline->Next();
    if (reply->type == REDIS_REPLY_ERROR && error.empty()) error = TextOf(*reply);
  }
  return error;
}

void RefuseQueued(const std::string& error) {
  if (error.empty()) return;
  if (StartsWith(error, "OOM ")) throw MemoryIsFull("Redis refuses to be read: " + error);
  throw std::runtime_error("Redis refuses to be read: " + error);
}

}  // namespace ostrafel
