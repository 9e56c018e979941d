// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/redis_reply.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

model::Reply Convert(const redisReply& reply) {
  const std::string text = reply.str == nullptr ? std::string() : std::string(reply.str, reply.len);
  std::vector<model::Reply> elements;
  switch (reply.type) {
    case REDIS_REPLY_STATUS:
      return model::StatusReply(text);
    case REDIS_REPLY_ERROR:
      return model::ErrorReply(text);
    case REDIS_REPLY_INTEGER:
      return model::IntegerReply(reply.integer);
    case REDIS_REPLY_STRING:
      return model::StringReply(text);
    case REDIS_REPLY_ARRAY:
      for (std::size_t i = 0; i < reply.elements; ++i) {
        elements.push_back(Convert(*reply.element[i]));
      }
      return model::ArrayReply(std::move(elements));
    default:
      return model::NilReply();
  }
}
