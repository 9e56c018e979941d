// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The flushes of store/server.h: each appends all commands before it reads the first reply, and
// reads every reply even after a bad one, so that the connection stays in step.
#include <cstddef>
#include <string>

#include "base/message.h"
#include "redis/pipeline.h"
#include "redis/redis_server.h"
#include "store/server.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

bool IsInteger(const redisReply* reply) {
  return reply != nullptr && reply->type == REDIS_REPLY_INTEGER;
}

bool IsListLength(const redisReply* reply) { return IsInteger(reply) && reply->integer >= 1; }

// Sends the rest of a pipeline and reads its replies. Prints message at the first bad one; after a
// failure the rest is read, not checked.
unsigned CollectReplies(const Pipeline& pipeline, bool (*is_good)(const redisReply*),
                        const char* message) {
  FinishPipeline(pipeline);
  unsigned result = 1;
  for (std::size_t i = 0; i < pipeline.count; ++i) {
    Reply reply;
    if (!ReadPipelinedReply(pipeline, &reply)) {
      result = 0;
    } else if (result != 0 && !is_good(reply.get())) {
      PrintMessage("%s", message);
      result = 0;
    }
  }
  return result;
}

}  // namespace

unsigned FlushRemovalBatch(Server* server) {
  Pipeline pipeline = {server->connection.get()};
  PendingRemovals& batch = Store->RemovalBatch;
  for (const std::string& key : batch.keys) AppendCommand(&pipeline, "UNLINK %s", key.c_str());
  for (const auto& [key, values] : batch.list_values) {
    for (const char* value : values) AppendCommand(&pipeline, "LREM %s 0 %s", key, value);
  }
  for (const auto& [key, fields] : batch.hash_fields) {
    for (const char* field : fields) AppendCommand(&pipeline, "HDEL %s %s", key, field);
  }
  batch.clear();
  return CollectReplies(pipeline, IsInteger, RemovalFlushFailed);
}

unsigned FlushHashBatch(Server* server) {
  Pipeline pipeline = {server->connection.get()};
  for (const auto& [key, fields] : Store->HashBatch) {
    for (const auto& [field, value] : fields) {
      AppendCommand(&pipeline, "HSET %s %s %s", key, field, value);
    }
  }
  Store->HashBatch.clear();
  return CollectReplies(pipeline, IsInteger, HashFlushFailed);
}

unsigned FlushListBatch(Server* server) {
  Pipeline pipeline = {server->connection.get()};
  for (const auto& [key, values] : Store->ListBatch) {
    for (const char* value : values) AppendCommand(&pipeline, "RPUSH %s %s", key, value);
  }
  Store->ListBatch.clear();
  return CollectReplies(pipeline, IsListLength, ListFlushFailed);
}

}  // namespace ostrafel
