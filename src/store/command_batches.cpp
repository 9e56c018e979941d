#include "store/command_batches.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "store/replies.h"
#include "store/required_text.h"
#include "store/store_state.h"

namespace {

bool IsInteger(const redisReply* reply) {
  return reply != nullptr && reply->type == REDIS_REPLY_INTEGER;
}

bool IsListLength(const redisReply* reply) { return IsInteger(reply) && reply->integer >= 1; }

// Reads the replies of count commands. After the first failure the rest is read, not checked.
unsigned CollectReplies(redisContext* context, std::size_t count,
                        bool (*is_good)(const redisReply*), const char* message) {
  unsigned result = 1;
  for (std::size_t i = 0; i < count; ++i) {
    Reply reply;
    if (!ReadPipelinedReply(context, &reply)) {
      result = 0;
    } else if (result != 0 && !is_good(reply.get())) {
      (void)std::fprintf(stderr, "%sThe data in database would be incorrect\n", message);
      result = 0;
    }
  }
  return result;
}

// Of a long pipeline this much is sent at a time, so that the server works while the rest is still
// formatted.
constexpr std::size_t kWriteSize = std::size_t{16} * 1024;

// Appends one command to the pipeline and counts it. A command that cannot be appended, or sent,
// leaves the context in its error state, so that reading its reply fails.
template <typename... Texts>
void Append(redisContext* context, std::size_t* count, const char* format, Texts... texts) {
  (void)redisAppendCommand(context, format, texts...);
  if (sdslen(context->obuf) >= kWriteSize) {
    int is_sent_whole = 0;  // what is not goes out later
    (void)redisBufferWrite(context, &is_sent_whole);
  }
  ++*count;
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
  std::size_t count = 0;
  for (const std::string& key : RemovalBatch.keys) {
    Append(context, &count, "UNLINK %s", key.c_str());
  }
  for (const auto& [key, values] : RemovalBatch.list_values) {
    for (const char* value : values) Append(context, &count, "LREM %s 0 %s", key, value);
  }
  for (const auto& [key, fields] : RemovalBatch.hash_fields) {
    for (const char* field : fields) Append(context, &count, "HDEL %s %s", key, field);
  }
  RemovalBatch.clear();
  return CollectReplies(context, count, IsInteger,
                        "Some errors occur while removing data from database\n");
}

unsigned FlushHashBatch(redisContext* context) {
  std::size_t count = 0;
  for (const auto& [key, fields] : HashBatch) {
    for (const auto& [field, value] : fields) {
      Append(context, &count, "HSET %s %s %s", key, field, value);
    }
  }
  HashBatch.clear();
  return CollectReplies(context, count, IsInteger,
                        "Some errors occur while creating hash data into database\n");
}

unsigned FlushListBatch(redisContext* context) {
  std::size_t count = 0;
  for (const auto& [key, values] : ListBatch) {
    for (const char* value : values) Append(context, &count, "RPUSH %s %s", key, value);
  }
  ListBatch.clear();
  return CollectReplies(context, count, IsListLength,
                        "Some errors occur while creating list data into database\n");
}

unsigned PutListItem(redisContext* context, const char* key, const char* value) {
  if (ListBatchCount == BatchLimit) {
    if (FlushRemovalBatch(context) == 0 || FlushListBatch(context) == 0) return 0;
    ListBatchCount = 0;
  }
  try {
    ListBatch[RequiredText(key)].push_back(ListBatch.Keep(RequiredText(value)));
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
  SetField(&HashBatch[RequiredText(key)],
           {HashBatch.Keep(RequiredText(field)), HashBatch.Keep(RequiredText(value))});
  ++HashBatchCount;
  return 1;
}
