// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/session.h"

#include <stdexcept>

namespace ostrafel {

namespace {

// So many bytes of commands go out together. Less than a socket usually holds.
constexpr std::size_t kPieceSize = std::size_t{64} * 1024;

[[noreturn]] void Fail(const redisContext& context) {
  throw std::runtime_error(std::string("the connection to Redis: ") +
                           (context.err != 0 ? context.errstr : "no reply"));
}

}  // namespace

void LivePipeline::Append(const Words& words) {
  std::vector<const char*> texts;
  std::vector<std::size_t> sizes;
  texts.reserve(words.size());
  sizes.reserve(words.size());
  for (const std::string_view word : words) {
    texts.push_back(word.data());
    sizes.push_back(word.size());
    waiting_ += word.size();
  }
  if (redisAppendCommandArgv(context_, static_cast<int>(words.size()), texts.data(),
                             sizes.data()) != REDIS_OK) {
    Fail(*context_);
  }
  is_sent_ = false;
  if (waiting_ >= kPieceSize) Send();
}

void LivePipeline::Send() {
  int is_done = 0;
  while (is_done == 0) {
    if (redisBufferWrite(context_, &is_done) != REDIS_OK) Fail(*context_);
  }
  waiting_ = 0;
  is_sent_ = true;
}

Reply LivePipeline::Next() {
  // redisGetReply would send what waits only when it has no reply yet.
  if (!is_sent_) Send();
  void* reply = nullptr;
  if (redisGetReply(context_, &reply) != REDIS_OK || reply == nullptr) Fail(*context_);
  return Reply(static_cast<redisReply*>(reply));
}

Reply AskServer(redisContext* context, const Words& words) {
  LivePipeline pipeline(context);
  pipeline.Append(words);
  return pipeline.Next();
}

std::string_view TextOf(const redisReply& reply) {
  switch (reply.type) {
    case REDIS_REPLY_STRING:
    case REDIS_REPLY_STATUS:
    case REDIS_REPLY_ERROR:
      return {reply.str, reply.len};
    default:
      return {};
  }
}

void RefuseError(const redisReply& reply, const std::string& command) {
  if (reply.type != REDIS_REPLY_ERROR) return;
  throw std::runtime_error("Redis answers " + command + " with: " + std::string(TextOf(reply)));
}

}  // namespace ostrafel
