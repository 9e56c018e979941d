// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "redis/replies.h"

#include <cstdlib>
#include <string>

namespace ostrafel {

namespace {

// A cursor and the items found.
bool IsScanReply(const redisReply* reply, std::size_t step) {
  return reply != nullptr && reply->type == REDIS_REPLY_ARRAY && reply->elements >= 2 &&
         reply->element[0]->type == REDIS_REPLY_STRING && IsArrayOfStrings(reply->element[1], step);
}

}  // namespace

bool IsArrayOfStrings(const redisReply* reply, std::size_t step) {
  if (reply == nullptr || reply->type != REDIS_REPLY_ARRAY) return false;
  for (std::size_t i = 0; i < reply->elements; i += step) {
    if (reply->element[i]->type != REDIS_REPLY_STRING) return false;
  }
  return true;
}

unsigned ScanAll(const std::function<Reply(int cursor)>& ask, std::size_t step,
                 const TakeName& take) {
  long cursor = 0;
  do {
    const Reply reply = ask(static_cast<int>(cursor));
    if (!IsScanReply(reply.get(), step)) return 0;
    cursor = std::strtol(reply->element[0]->str, nullptr, 10);
    const redisReply& items = *reply->element[1];
    for (std::size_t i = 0; i < items.elements; i += step) {
      if (take(std::string(items.element[i]->str, items.element[i]->len)) == 0) return 0;
    }
  } while (cursor != 0);
  return 1;
}

}  // namespace ostrafel
