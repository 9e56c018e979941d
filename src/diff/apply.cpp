// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/apply.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "diff/change_plan.h"
#include "diff/comparison.h"
#include "diff/resources.h"
#include "live/session.h"
#include "live/store_reading.h"
#include "tool/grouped.h"

namespace ostrafel {

namespace {

using Changes = std::vector<KeyChange>;

// A WATCH of all keys, or a pipeline of several, would block the server until it watches them all.
constexpr std::size_t kKeysInWatch = 100;

std::vector<std::string> KeysOf(const Changes& changes) {
  std::vector<std::string> keys;
  keys.reserve(changes.size());
  for (const KeyChange& change : changes) keys.push_back(change.begin->key);
  return keys;
}

// The part of a store that these keys are.
Server PartOf(const Server& store, const std::vector<std::string>& keys) {
  Server part;
  for (const std::string& key : keys) {
    const auto found = store.keys.find(key);
    if (found != store.keys.end()) part.keys.insert(*found);
  }
  return part;
}

// From here on a transaction fails when one of the keys changes.
void Watch(redisContext* context, const std::vector<std::string>& keys) {
  for (std::size_t begin = 0; begin < keys.size(); begin += kKeysInWatch) {
    const std::size_t end = std::min(keys.size(), begin + kKeysInWatch);
    Words words = {"WATCH"};
    for (std::size_t i = begin; i < end; ++i) words.emplace_back(keys[i]);
    RequireStatus(*AskServer(context, words), "OK", "WATCH");
  }
}

std::vector<Command> CommandsFor(const Changes& changes, const Server& stored,
                                 const Server& wanted) {
  std::vector<Command> commands;
  for (const KeyChange& change : changes) {
    std::vector<Command> of_key = CommandsFor(change, stored, wanted);
    std::move(of_key.begin(), of_key.end(), std::back_inserter(commands));
  }
  return commands;
}

// Has the server keep the commands for EXEC, all of them.
void Queue(redisContext* context, const std::vector<Command>& commands) {
  // Alone: after a MULTI that is refused, commands would be carried out as they come.
  RequireStatus(*AskServer(context, {"MULTI"}), "OK", "MULTI");
  LivePipeline pipeline(context);
  for (const Command& command : commands) pipeline.Append(Words(command.begin(), command.end()));
  for (const Command& command : commands) {
    RequireStatus(*pipeline.Next(), "QUEUED", command.front());
  }
}

// Has so many commands that are queued carried out. False when a watched key has changed.
bool Execute(redisContext* context, std::size_t commands, Applied* applied) {
  applied->is_in_doubt = true;
  const Reply results = AskServer(context, {"EXEC"});
  if (results->type == REDIS_REPLY_NIL || results->type == REDIS_REPLY_ERROR) {
    applied->is_in_doubt = false;  // the server has dropped all of it
  }
  if (results->type == REDIS_REPLY_NIL) return false;
  RefuseError(*results, "EXEC");
  if (results->type != REDIS_REPLY_ARRAY || results->elements != commands) {
    RefuseReply("EXEC");
  }
  for (std::size_t i = 0; i < commands; ++i) {
    RefuseError(*results->element[i], "a command of the transaction");
  }
  applied->is_in_doubt = false;
  return true;
}

// Carries out the changes as one transaction. False when another client has changed one of these
// keys.
bool CarryOut(redisContext* context, const Changes& changes, const Server& stored,
              const Server& wanted, Applied* applied) {
  const std::vector<std::string> keys = KeysOf(changes);
  const Server expected = PartOf(stored, keys);
  Watch(context, keys);
  if (!CompareStores(expected, ReadKeys(context, keys, expected)).empty()) {
    RequireStatus(*AskServer(context, {"UNWATCH"}), "OK", "UNWATCH");
    return false;
  }
  const std::vector<Command> commands = CommandsFor(changes, stored, wanted);
  Queue(context, commands);
  if (!Execute(context, commands.size(), applied)) return false;
  ++applied->transactions;
  applied->keys += changes.size();
  for (const KeyChange& change : changes) {
    applied->records += CountRecords(change, stored, wanted);
    applied->differences.insert(applied->differences.end(), change.begin, change.end);
  }
  return true;
}

// The changes, cut into transactions.
std::vector<Changes> Transactions(const Changes& changes, const Server& stored,
                                  const Server& wanted, std::optional<std::size_t> batch) {
  if (!batch) {
    if (changes.size() > kKeysChangedAtOnce) {
      throw std::runtime_error(Counted(changes.size(), "key") +
                               " differ, more than one transaction changes (" +
                               Grouped(kKeysChangedAtOnce) + "): see --batch");
    }
    return changes.empty() ? std::vector<Changes>() : std::vector<Changes>{changes};
  }
  std::map<std::string, Changes> by_resource;
  for (const KeyChange& change : changes) {
    by_resource[ResourceOf(change.begin->key, stored, wanted)].push_back(change);
  }
  std::vector<Changes> transactions;
  std::size_t resources = 0;  // in the last one
  for (const auto& [resource, of_resource] : by_resource) {
    if (transactions.empty() || resources == *batch ||
        transactions.back().size() + of_resource.size() > kKeysChangedAtOnce) {
      transactions.emplace_back();
      resources = 0;
    }
    ++resources;
    transactions.back().insert(transactions.back().end(), of_resource.begin(), of_resource.end());
  }
  return transactions;
}

}  // namespace

bool ApplyDifferences(redisContext* context, const Server& stored, const Server& wanted,
                      const Differences& differences, std::optional<std::size_t> batch,
                      Applied* applied) {
  const std::vector<Changes> transactions =
      Transactions(GroupByKey(differences), stored, wanted, batch);
  return std::all_of(transactions.begin(), transactions.end(), [&](const Changes& changes) {
    return CarryOut(context, changes, stored, wanted, applied);
  });
}

}  // namespace ostrafel
