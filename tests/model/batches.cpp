// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/batches.h"

#include <cstddef>
#include <vector>

namespace model {
namespace {

bool SendAndCheck(RunState& run, const std::vector<Command>& commands, long long least_integer,
                  const std::string& message) {
  if (commands.empty()) return true;
  const std::vector<Reply> replies = run.endpoint.Exchange(commands);
  bool good = true;
  for (std::size_t i = 0; i < commands.size(); ++i) {
    if (i >= replies.size()) {
      run.err += "Failed to get reply\n";
      good = false;
    } else if (good &&
               (replies[i].type != Reply::Type::kInteger || replies[i].integer < least_integer)) {
      run.err += message + "The data in database would be incorrect\n";
      good = false;
    }
  }
  return good;
}

// Any integer is a good answer to everything but RPUSH.
constexpr long long kAnyInteger = -9223372036854775807LL - 1;

}  // namespace

bool FlushRemovals(RunState& run) {
  std::vector<Command> commands;
  for (const std::string& key : run.keys_to_unlink) commands.push_back({"UNLINK", key});
  for (const auto& [key, values] : run.list_removals) {
    for (const std::string& value : values) commands.push_back({"LREM", key, "0", value});
  }
  for (const auto& [key, fields] : run.field_removals) {
    for (const std::string& field : fields) commands.push_back({"HDEL", key, field});
  }
  const bool good = SendAndCheck(run, commands, kAnyInteger,
                                 "Some errors occur while removing data from database\n");
  run.keys_to_unlink.clear();
  run.list_removals.clear();
  run.field_removals.clear();
  return good;
}

bool FlushHashes(RunState& run) {
  std::vector<Command> commands;
  for (const auto& [key, fields] : run.hash_batch) {
    for (const auto& [field, value] : fields) commands.push_back({"HSET", key, field, value});
  }
  const bool good = SendAndCheck(run, commands, kAnyInteger,
                                 "Some errors occur while creating hash data into database\n");
  run.hash_batch.clear();
  return good;
}

bool FlushLists(RunState& run) {
  std::vector<Command> commands;
  for (const auto& [key, values] : run.list_batch) {
    for (const std::string& value : values) commands.push_back({"RPUSH", key, value});
  }
  const bool good =
      SendAndCheck(run, commands, 1, "Some errors occur while creating list data into database\n");
  run.list_batch.clear();
  return good;
}

bool PutField(RunState& run, const std::string& key, const std::string& field,
              const std::string& value) {
  if (run.hash_count == kBatchLimit) {
    if (!FlushRemovals(run)) return false;
    if (!FlushHashes(run)) return false;
    run.hash_count = 0;
  }
  run.hash_batch[key][field] = value;
  ++run.hash_count;
  return true;
}

bool PutItem(RunState& run, const std::string& key, const std::string& value) {
  if (run.list_count == kBatchLimit) {
    if (!FlushRemovals(run)) return false;
    if (!FlushLists(run)) return false;
    run.list_count = 0;
  }
  run.list_batch[key].push_back(value);
  ++run.list_count;
  return true;
}

bool QueueRemoval(RunState& run, const std::string& key, const std::string& text,
                  RemovalKind kind) {
  if (run.removal_count == kBatchLimit) {
    if (!FlushRemovals(run)) return false;
    run.removal_count = 0;
  }
  switch (kind) {
    case RemovalKind::kField:
      run.field_removals[key].push_back(text);
      break;
    case RemovalKind::kElement:
      run.list_removals[key].push_back(text);
      break;
    case RemovalKind::kKey:
      run.keys_to_unlink.push_back(key);
      break;
  }
  ++run.removal_count;
  return true;
}

}  // namespace model
