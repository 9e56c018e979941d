// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/apply.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "diff/change_plan.h"
#include "diff/comparison.h"
#include "diff/resources.h"
#include "live/session.h"
#include "live/store_reading.h"

namespace ostrafel {

namespace {

using Changes = std::vector<KeyChange>;

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

// From here on the transaction fails when one of the keys changes.
void Watch(redisContext* context, const std::vector<std::string>& keys) {
  Words words = {"WATCH"};
  words.insert(words.end(), keys.begin(), keys.end());
  RefuseError(*AskServer(context, words), "WATCH");
}

// Sends the commands of the changes as one transaction. False when a watched key has changed.
bool Execute(redisContext* context, const Changes& changes, const Server& stored,
             const Server& wanted) {
  LivePipeline pipeline(context);
  pipeline.Append({"MULTI"});
  std::size_t count = 1;
  for (const KeyChange& change : changes) {
    for (const Command& command : CommandsFor(change, stored, wanted)) {
      pipeline.Append(Words(command.begin(), command.end()));
      ++count;
    }
  }
  pipeline.Append({"EXEC"});
  std::string refusal;
  for (std::size_t i = 0; i < count; ++i) {
    const Reply reply = pipeline.Next();
    if (reply->type == REDIS_REPLY_ERROR && refusal.empty()) refusal = TextOf(*reply);
  }
  const Reply results = pipeline.Next();
  if (!refusal.empty()) {
    throw std::runtime_error("Redis refuses to be changed, and is as it was: " + refusal);
  }
  RefuseError(*results, "EXEC");
  if (results->type == REDIS_REPLY_NIL) return false;
  for (std::size_t i = 0; i < results->elements; ++i) RefuseError(*results->element[i], "EXEC");
  return true;
}

// The changes, cut into transactions.
std::vector<Changes> Transactions(const Changes& changes, const Server& stored,
                                  const Server& wanted, std::optional<std::size_t> batch) {
  if (!batch) {
    if (changes.size() > kKeysChangedAtOnce) {
      throw std::runtime_error(std::to_string(changes.size()) +
                               " keys differ, more than one transaction changes (" +
                               std::to_string(kKeysChangedAtOnce) + "): see --batch");
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
  for (const Changes& changes : Transactions(GroupByKey(differences), stored, wanted, batch)) {
    const std::vector<std::string> keys = KeysOf(changes);
    const Server expected = PartOf(stored, keys);
    Watch(context, keys);
    if (!CompareStores(expected, ReadKeys(context, keys, expected)).empty()) {
      RefuseError(*AskServer(context, {"UNWATCH"}), "UNWATCH");
      return false;
    }
    if (!Execute(context, changes, stored, wanted)) return false;
    ++applied->transactions;
    applied->keys += changes.size();
    for (const KeyChange& change : changes)
      applied->records += CountRecords(change, stored, wanted);
  }
  return true;
}

}  // namespace ostrafel
