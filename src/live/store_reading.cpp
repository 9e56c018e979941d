// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/store_reading.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "live/key_reading.h"
#include "live/session.h"
#include "tool/grouped.h"

namespace ostrafel {

namespace {

// The keys to read, in the order of their bytes, with what they are taken to hold, which decides
// how they are read.
using Guesses = std::map<std::string, KeyType, std::less<>>;

// Some of them.
using Places = std::vector<Guesses::iterator>;

// --- Guesses -------------------------------------------------------------------------------------

// Asks what these keys hold now. One that is gone is taken for a hash.
void AskTypes(redisContext* context, const Places& places) {
  for (std::size_t begin = 0; begin < places.size(); begin += kKeysInPipeline) {
    const std::size_t end = std::min(places.size(), begin + kKeysInPipeline);
    LivePipeline pipeline(context);
    for (std::size_t i = begin; i < end; ++i) pipeline.Append({"TYPE", places[i]->first});
    for (std::size_t i = begin; i < end; ++i) {
      const std::string type = TypeOf(*pipeline.Next());
      places[i]->second = type == "none" ? KeyType::kHash : TypeNamed(type);
    }
  }
}

// Adds keys, with what likely has of them or, where it has nothing, what they hold.
void AddKeys(redisContext* context, const std::vector<std::string>& keys, const Server& likely,
             Guesses* guesses) {
  Places unknown;
  for (const std::string& key : keys) {
    const auto [place, is_new] = guesses->try_emplace(key, KeyType::kHash);
    if (!is_new) continue;
    const auto known = likely.keys.find(key);
    if (known == likely.keys.end()) {
      unknown.push_back(place);
    } else {
      place->second = KeyTypeOf(known->second);
    }
  }
  AskTypes(context, unknown);
}

// --- What was read -------------------------------------------------------------------------------

// Makes the store hold what was read of the key. False when it has held this before.
bool Put(const std::string& key, Stored value, Server* store) {
  const auto before = store->keys.find(key);
  const bool was_there = before != store->keys.end();
  if (IsEmpty(value)) {
    if (was_there) store->keys.erase(before);
    return was_there;
  }
  if (was_there && before->second == value) return false;
  store->keys.insert_or_assign(key, std::move(value));
  return true;
}

// Sorted.
std::vector<std::string> NamesOf(const Places& places) {
  std::vector<std::string> names;
  names.reserve(places.size());
  for (const auto& place : places) names.push_back(place->first);
  std::sort(names.begin(), names.end());
  return names;
}

// --- Names ---------------------------------------------------------------------------------------

std::vector<std::string> MatchingKeys(redisContext* context, const ReadingScope& scope) {
  std::vector<std::string> keys;
  for (const std::string& pattern : scope.patterns) ScanKeys(context, pattern, &keys);
  return keys;
}

// --- In one transaction --------------------------------------------------------------------------

// The replies of a transaction to its commands.
Reply Execute(LivePipeline* pipeline, std::size_t commands) {
  const std::string refusal = TakeQueued(pipeline, commands);
  Reply results = pipeline->Next();
  RefuseQueued(refusal);
  RefuseError(*results, "EXEC");
  if (results->type != REDIS_REPLY_ARRAY || results->elements != commands) RefuseReply("EXEC");
  return results;
}

// Reads all keys, and which there are of the patterns, at one moment, and puts them into the store.
// Returns the names of those that were not expected, or hold something else than was thought: the
// store is left as it was there, and guesses are mended.
std::vector<std::string> ReadAtOnce(redisContext* context, const std::vector<std::string>& patterns,
                                    Guesses* guesses, Server* store) {
  LivePipeline pipeline(context);
  pipeline.Append({"MULTI"});
  for (const std::string& pattern : patterns) pipeline.Append({"KEYS", pattern});
  for (const auto& [key, guess] : *guesses) AppendRead(key, guess, &pipeline);
  pipeline.Append({"EXEC"});
  const Reply results = Execute(&pipeline, patterns.size() + guesses->size());

  Places others;
  std::size_t i = patterns.size();
  for (auto place = guesses->begin(); place != guesses->end(); ++place) {
    Stored value;
    if (TakeRead(*results->element[i++], place->second, &value)) {
      (void)Put(place->first, std::move(value), store);
    } else {
      others.push_back(place);
    }
  }
  for (i = 0; i < patterns.size(); ++i) {
    for (const std::string& key : StringsOf(*results->element[i], "KEYS")) {
      const auto [place, is_new] = guesses->try_emplace(key, KeyType::kHash);
      if (is_new) others.push_back(place);
    }
  }
  AskTypes(context, others);
  return NamesOf(others);
}

// --- In parts ------------------------------------------------------------------------------------

// Reads these keys in one pipeline and puts them into the store; those that hold something else
// than was thought again. Appends to changed what the store held otherwise.
void ReadPipeline(redisContext* context, Places places, Server* store, Places* changed) {
  for (int readings = 0; !places.empty(); ++readings) {
    if (readings == kMostReadings) {
      throw std::runtime_error("others change the type of a key each time that it is read: " +
                               places.front()->first);
    }
    LivePipeline pipeline(context);
    for (const auto& place : places) AppendRead(place->first, place->second, &pipeline);
    Places others;
    for (const auto& place : places) {
      Stored value;
      if (!TakeRead(*pipeline.Next(), place->second, &value)) {
        others.push_back(place);
      } else if (Put(place->first, std::move(value), store)) {
        changed->push_back(place);
      }
    }
    AskTypes(context, others);
    places = std::move(others);
  }
}

// Reads all keys, each at a moment of its own, and puts them into the store. Returns those that it
// held otherwise.
Places ReadInPipelines(redisContext* context, Guesses* guesses, Server* store) {
  Places changed;
  Places places;
  for (auto place = guesses->begin(); place != guesses->end(); ++place) {
    places.push_back(place);
    if (places.size() < kKeysInPipeline) continue;
    ReadPipeline(context, std::exchange(places, {}), store, &changed);
  }
  ReadPipeline(context, places, store, &changed);
  return changed;
}

// The keys that match the scope's patterns, but for the restless ones.
std::vector<std::string> OtherKeys(redisContext* context, const ReadingScope& scope,
                                   const Guesses& restless) {
  std::vector<std::string> keys = MatchingKeys(context, scope);
  const auto is_restless = [&](const std::string& key) { return restless.count(key) != 0; };
  keys.erase(std::remove_if(keys.begin(), keys.end(), is_restless), keys.end());
  return keys;
}

// Reads the keys and reads them again, until none of them differs: then they have held this at all
// times between the two readings. A key that was seen to change is not read with them any more but
// between the readings, together with all others of its kind at one moment. So what is found has
// been in the store at this moment.
Reading ReadInParts(redisContext* context, const ReadingScope& scope, const Server& likely,
                    std::size_t keys_at_once, Guesses guesses) {
  Reading reading;
  Guesses restless;
  (void)ReadInPipelines(context, &guesses, &reading.store);
  for (int readings = 1; readings < kMostReadings; ++readings) {
    reading.unsteady.clear();
    if (!restless.empty()) {
      reading.unsteady = ReadAtOnce(context, {}, &restless, &reading.store);
    }
    AddKeys(context, OtherKeys(context, scope, restless), likely, &guesses);
    for (const auto& place : ReadInPipelines(context, &guesses, &reading.store)) {
      reading.unsteady.push_back(place->first);
      restless.insert(guesses.extract(place));
    }
    if (reading.unsteady.empty()) break;
    // Too many to be read at one moment.
    if (restless.size() > keys_at_once) guesses.merge(std::exchange(restless, {}));
  }
  std::sort(reading.unsteady.begin(), reading.unsteady.end());
  return reading;
}

}  // namespace

Reading ReadStore(redisContext* context, const ReadingScope& scope, const Server& likely,
                  std::size_t keys_at_once) {
  Guesses guesses;
  AddKeys(context, scope.keys, likely, &guesses);
  AddKeys(context, MatchingKeys(context, scope), likely, &guesses);
  Reading reading;
  for (int readings = 0; readings < kMostReadings; ++readings) {
    if (guesses.size() > keys_at_once) {
      return ReadInParts(context, scope, likely, keys_at_once, std::move(guesses));
    }
    reading.store.keys.clear();
    try {
      reading.unsteady = ReadAtOnce(context, scope.patterns, &guesses, &reading.store);
    } catch (const MemoryIsFull&) {
      keys_at_once = 0;
      continue;
    }
    if (reading.unsteady.empty()) break;
  }
  return reading;
}

std::string UnsteadyMessage(std::size_t count, const std::string& first) {
  return "the store was changed while it was read, again and again: " + Counted(count, "key") +
         ", such as " + first;
}

Server ReadKeys(redisContext* context, const std::vector<std::string>& keys, const Server& likely) {
  Guesses guesses;
  AddKeys(context, keys, likely, &guesses);
  Server store;
  (void)ReadInPipelines(context, &guesses, &store);
  return store;
}

}  // namespace ostrafel
