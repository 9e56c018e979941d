// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/queue.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "base/message.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

// Flushes when the batch is full, then queues one item with push.
template <typename Flush, typename Push>
unsigned Queue(std::uint32_t* count, const Flush& flush, const Push& push) {
  // Not "at least": nothing counts past the limit, because a flush that fails queues nothing.
  if (*count == BatchLimit) {
    if (!flush()) return 0;
    *count = 0;
  }
  if (push() == 0) return 0;
  ++*count;
  return 1;
}

// Carries out push, whose strings and lists may get too long.
template <typename Push>
unsigned OrReport(const Push& push) {
  try {
    push();
  } catch (const std::length_error& error) {
    PrintLengthError(error.what());
    return 0;
  }
  return 1;
}

void Append(KeyedBatch<KeptStrings>* batch, const std::string& key, const Pieces& value) {
  const char* kept = batch->Keep(value);
  (*batch)[key.c_str()].push_back(kept);
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

unsigned PutListItem(Server* server, const std::string& key, const Pieces& value) {
  return Queue(
      &Store->ListBatchCount,
      [&] { return FlushRemovalBatch(server) != 0 && FlushListBatch(server) != 0; },
      [&] { return OrReport([&] { Append(&Store->ListBatch, key, value); }); });
}

unsigned PutHashField(Server* server, const std::string& key, const Pieces& field,
                      std::string_view value) {
  return Queue(
      &Store->HashBatchCount,
      [&] { return FlushRemovalBatch(server) != 0 && FlushHashBatch(server) != 0; },
      [&] {
        auto& batch = Store->HashBatch;
        const Field kept = {batch.Keep(field), batch.Keep(Pieces{value})};
        SetField(&batch[key.c_str()], kept);
        return 1U;
      });
}

unsigned QueueRemoval(Server* server, const std::string& key, const Pieces& value,
                      RemovalKind kind) {
  PendingRemovals& batch = Store->RemovalBatch;
  const auto push = [&] {
    if (kind == RemoveField) {
      Append(&batch.hash_fields, key, value);
    } else if (kind == RemoveListValue) {
      Append(&batch.list_values, key, value);
    } else {
      batch.keys.push_back(key);
    }
  };
  return Queue(
      &Store->RemovalBatchCount, [&] { return FlushRemovalBatch(server) != 0; },
      [&] { return OrReport(push); });
}

}  // namespace ostrafel
