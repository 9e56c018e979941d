// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/session.h"

#include <stdexcept>

namespace ostrafel {

namespace {

// So many bytes of commands go out together. Less than a socket usually holds.
constexpr std::size_t kPieceSize = std::size_t{64} * 1024;

// hiredis counts the words of a command and its bytes in an int. A server closes the connection
// after as many bytes of one command as this (client-query-buffer-limit).
constexpr unsigned long long kLongestCommand = 1ULL << 30U;

// What the protocol adds to a word, at most: its size, and line ends.
constexpr std::size_t kWordHeader = 16;

[[noreturn]] void Fail(const redisContext& context) {
  throw std::runtime_error(std::string("the connection to Redis failed: ") + context.errstr);
}

}  // namespace

void LivePipeline::Append(const Words& words) {
  std::vector<const char*> texts;
  std::vector<std::size_t> sizes;
  texts.reserve(words.size());
  sizes.reserve(words.size());
  unsigned long long size = 0;
  for (const std::string_view word : words) {
    texts.push_back(word.data());
    sizes.push_back(word.size());
    size += word.size() + kWordHeader;
  }
  if (size > kLongestCommand) {
    throw std::runtime_error("a command " + std::string(words.front()) + " of " +
                             std::to_string(size) + " bytes is longer than Redis takes");
  }
  if (redisAppendCommandArgv(context_, static_cast<int>(words.size()), texts.data(),
                             sizes.data()) != REDIS_OK) {
    Fail(*context_);
  }
  waiting_ += static_cast<std::size_t>(size);
  if (waiting_ >= kPieceSize) Send();
}

void LivePipeline::Send() {
  int is_done = 0;  // a signal may cut a write short
  while (is_done == 0) {
    if (redisBufferWrite(context_, &is_done) != REDIS_OK) Fail(*context_);
  }
  waiting_ = 0;
}

Reply LivePipeline::Next() {
  // redisGetReply would send what waits only when it has no reply yet.
  if (waiting_ > 0) Send();
  void* reply = nullptr;
  if (redisGetReply(context_, &reply) != REDIS_OK) Fail(*context_);
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

void RefuseReply(const std::string& command) {
  throw std::runtime_error("Redis answers " + command + " with something else than it should");
}

void RequireStatus(const redisReply& reply, std::string_view status, const std::string& command) {
  RefuseError(reply, command);
  if (reply.type != REDIS_REPLY_STATUS || TextOf(reply) != status) RefuseReply(command);
}

}  // namespace ostrafel
