// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "pieces/queue_items.h"

#include <array>

namespace ostrafel {

std::vector<QueueItem> MakeQueueItems(std::size_t items_per_key) {
  constexpr std::array<const char*, 8> fields = {
      "@odata.id",         "Id",        "Name",         "MemoryDeviceType", "CapacityMiB",
      "OperatingSpeedMhz", "RankCount", "DeviceLocator"};
  std::vector<QueueItem> items;
  items.reserve(kBatchItems);
  for (std::size_t i = 0; i < kBatchItems; ++i) {
    // Of four digits, so that the order of the numbers is that of the strings.
    const std::string number = std::to_string(1000 + i / items_per_key);
    items.push_back({"/redfish/v1/Systems/Node1/Memory/Dimm" + number, fields.at(i % items_per_key),
                     "\"Module " + std::to_string(i) + "\""});
  }
  return items;
}

unsigned QueueFields(Server* server, const std::vector<QueueItem>& items) {
  Store.emplace();
  unsigned result = 1;
  for (const auto& [key, field, value] : items) {
    result &= PutHashField(server, key, {field}, value);
  }
  return result;
}

unsigned QueueValues(Server* server, const std::vector<QueueItem>& items) {
  Store.emplace();
  unsigned result = 1;
  for (const auto& [key, field, value] : items) {
    result &= PutListItem(server, key, {value});
  }
  return result;
}

unsigned QueueRemovals(Server* server, const std::vector<QueueItem>& items, RemovalKind kind) {
  Store.emplace();
  unsigned result = 1;
  for (const auto& [key, field, value] : items) {
    result &= QueueRemoval(server, key, {kind == RemoveField ? field : value}, kind);
  }
  return result;
}

}  // namespace ostrafel
