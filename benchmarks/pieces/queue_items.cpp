// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "pieces/queue_items.h"

#include <array>

#include "store/command_batches.h"

namespace ostrafel {

std::vector<QueueItem> MakeQueueItems(std::size_t items_per_key) {
  constexpr std::array<const char*, 8> fields = {
      "@odata.id",         "Id",        "Name",         "MemoryDeviceType", "CapacityMiB",
      "OperatingSpeedMhz", "RankCount", "DeviceLocator"};
  std::vector<QueueItem> items;
  items.reserve(kBatchItems);
  for (std::size_t i = 0; i < kBatchItems; ++i) {
    // Of four digits, so that the order of the numbers is that of the texts.
    const std::string number = std::to_string(1000 + i / items_per_key);
    items.push_back({"/redfish/v1/Systems/Node1/Memory/Dimm" + number, fields.at(i % items_per_key),
                     "\"Module " + std::to_string(i) + "\""});
  }
  return items;
}

unsigned QueueFields(redisContext* context, const std::vector<QueueItem>& items) {
  ResetStoreState();
  unsigned result = 1;
  for (const auto& [key, field, value] : items) {
    result &= PutHashField(context, key.c_str(), field.c_str(), value.c_str());
  }
  return result;
}

unsigned QueueValues(redisContext* context, const std::vector<QueueItem>& items) {
  ResetStoreState();
  unsigned result = 1;
  for (const auto& [key, field, value] : items) {
    result &= PutListItem(context, key.c_str(), value.c_str());
  }
  return result;
}

unsigned QueueRemovals(redisContext* context, const std::vector<QueueItem>& items,
                       RemovalKind kind) {
  ResetStoreState();
  unsigned result = 1;
  for (const auto& [key, field, value] : items) {
    result &= QueueRemoval(context, key, kind == RemoveField ? field : value, kind);
  }
  return result;
}

}  // namespace ostrafel
