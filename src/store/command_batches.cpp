// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/command_batches.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "redis/pipeline.h"
#include "redis/replies.h"
#include "store/required_text.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

bool IsInteger(const redisReply* reply) {
  return reply != nullptr && reply->type == REDIS_REPLY_INTEGER;
}

bool IsListLength(const redisReply* reply) { return IsInteger(reply) && reply->integer >= 1; }

// Sends the rest of a pipeline and reads its replies. After the first failure the rest is read, not
// checked.
unsigned CollectReplies(const Pipeline& pipeline, bool (*is_good)(const redisReply*),
                        const char* message) {
  FinishPipeline(pipeline);
  unsigned result = 1;
  for (std::size_t i = 0; i < pipeline.count; ++i) {
    Reply reply;
    if (!ReadPipelinedReply(pipeline, &reply)) {
      result = 0;
    } else if (result != 0 && !is_good(reply.get())) {
      (void)std::fprintf(stderr, "%sThe data in database would be incorrect\n", message);
      result = 0;
    }
  }
  return result;
}

// Room that most objects' fields fit into.
constexpr std::size_t kUsualFields = 8;

// Gives the field its value, whether it waits already or not.
void SetField(std::pmr::vector<Field>* fields, const Field& field) {
  if (fields->empty()) fields->reserve(kUsualFields);
  const auto is_before = [](const Field& a, const Field& b) { return ByteOrder()(a.name, b.name); };
  const auto place = std::lower_bound(fields->begin(), fields->end(), field, is_before);
  if (place != fields->end() && !is_before(field, *place)) {
    place->value = field.value;
  } else {
    fields->insert(place, field);
  }
}

}  // namespace

unsigned FlushRemovalBatch(redisContext* context) {
  Pipeline pipeline = {context};
  for (const std::string& key : RemovalBatch.keys) {
    AppendCommand(&pipeline, "UNLINK %s", key.c_str());
  }
  for (const auto& [key, values] : RemovalBatch.list_values) {
    for (const char* value : values) AppendCommand(&pipeline, "LREM %s 0 %s", key, value);
  }
  for (const auto& [key, fields] : RemovalBatch.hash_fields) {
    for (const char* field : fields) AppendCommand(&pipeline, "HDEL %s %s", key, field);
  }
  RemovalBatch.clear();
  return CollectReplies(pipeline, IsInteger,
                        "Some errors occur while removing data from database\n");
}

unsigned FlushHashBatch(redisContext* context) {
  Pipeline pipeline = {context};
  for (const auto& [key, fields] : HashBatch) {
    for (const auto& [field, value] : fields) {
      AppendCommand(&pipeline, "HSET %s %s %s", key, field, value);
    }
  }
  HashBatch.clear();
  return CollectReplies(pipeline, IsInteger,
                        "Some errors occur while creating hash data into database\n");
}

unsigned FlushListBatch(redisContext* context) {
  Pipeline pipeline = {context};
  for (const auto& [key, values] : ListBatch) {
    for (const char* value : values) AppendCommand(&pipeline, "RPUSH %s %s", key, value);
  }
  ListBatch.clear();
  return CollectReplies(pipeline, IsListLength,
                        "Some errors occur while creating list data into database\n");
}

unsigned PutListItem(redisContext* context, const char* key, const char* value) {
  if (ListBatchCount == BatchLimit) {
    if (FlushRemovalBatch(context) == 0 || FlushListBatch(context) == 0) return 0;
    ListBatchCount = 0;
  }
  try {
    QueueText(RequiredText(key), RequiredText(value), &ListBatch);
  } catch (const std::length_error& error) {
    (void)std::fprintf(stderr, "Failed to push data: %s.\n", error.what());
    return 0;
  }
  ++ListBatchCount;
  return 1;
}

unsigned PutHashField(redisContext* context, const char* key, const char* field,
                      const char* value) {
  if (HashBatchCount == BatchLimit) {
    if (FlushRemovalBatch(context) == 0 || FlushHashBatch(context) == 0) return 0;
    HashBatchCount = 0;
  }
  const Field kept = {HashBatch.Keep(RequiredText(field)), HashBatch.Keep(RequiredText(value))};
  SetField(&HashBatch[RequiredText(key)], kept);
  ++HashBatchCount;
  return 1;
}

}  // namespace ostrafel
