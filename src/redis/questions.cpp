// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The questions of store/server.h: one command, one round trip each; a search, one for each cursor.
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "connection/reply.h"
#include "redis/redis_server.h"
#include "redis/replies.h"
#include "store/server.h"

namespace ostrafel {

std::optional<KeyType> AskType(Server* server, const std::string& key) {
  const Reply reply = Ask(server->connection.get(), "TYPE %s", key.c_str());
  if (!reply || reply->type != REDIS_REPLY_STATUS) return std::nullopt;
  const std::string_view type(reply->str, reply->len);
  // "none", whatever follows it: no other type of a server begins so.
  if (type.substr(0, 4) == "none") return KeyType::kNone;
  if (type == "hash") return KeyType::kHash;
  return type == "list" ? KeyType::kList : KeyType::kOther;
}

std::optional<std::string> AskFirstElement(Server* server, const std::string& key) {
  const Reply reply = Ask(server->connection.get(), "LINDEX %s 0", key.c_str());
  if (!reply || reply->type != REDIS_REPLY_STRING) return std::nullopt;
  return std::string(reply->str, reply->len);
}

bool AskFieldExists(Server* server, const std::string& key, const std::string& field) {
  const Reply reply = Ask(server->connection.get(), "HEXISTS %s %s", key.c_str(), field.c_str());
  return reply && reply->type == REDIS_REPLY_INTEGER && reply->integer == 1;
}

unsigned FindKeys(Server* server, const std::string& pattern, const TakeName& take) {
  const auto ask = [&](int cursor) {
    return Ask(server->connection.get(), "SCAN %d MATCH %s COUNT 1000", cursor, pattern.c_str());
  };
  // By reference, because std::function would copy it to the heap.
  return ScanAll(std::ref(ask), 1, take);
}

unsigned FindFields(Server* server, const std::string& key, const std::string& pattern,
                    const TakeName& take) {
  const auto ask = [&](int cursor) {
    return Ask(server->connection.get(), "HSCAN %s %d MATCH %s", key.c_str(), cursor,
               pattern.c_str());
  };
  return ScanAll(std::ref(ask), 2, take);  // fields and values alternate
}

}  // namespace ostrafel
