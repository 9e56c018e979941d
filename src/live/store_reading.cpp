// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/store_reading.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "live/session.h"

namespace ostrafel {

namespace {

// So many keys are asked for in one pipeline: what the server keeps of its answers stays small.
constexpr std::size_t kKeysInPipeline = 1000;

// A SCAN looks at as many keys at a time, which takes a server less than a millisecond.
constexpr const char* kKeysInScan = "1000";

// No SCAN takes more steps than this: a server has room for 2^32 keys.
constexpr std::size_t kMostScanSteps = 5000000;

// What a key is taken to hold, which decides how it is read.
enum class Guess { kHash, kList, kOther };

// The keys to read, in the order of their bytes.
using Guesses = std::map<std::string, Guess, std::less<>>;

// Some of them.
using Places = std::vector<Guesses::iterator>;

// --- Replies -------------------------------------------------------------------------------------

std::vector<std::string> StringsOf(const redisReply& reply, const std::string& command) {
  RefuseError(reply, command);
  if (reply.type != REDIS_REPLY_ARRAY) RefuseReply(command);
  std::vector<std::string> strings;
  strings.reserve(reply.elements);
  for (std::size_t i = 0; i < reply.elements; ++i) {
    const redisReply& element = *reply.element[i];
    if (element.type != REDIS_REPLY_STRING) RefuseReply(command);
    strings.emplace_back(TextOf(element));
  }
  return strings;
}

Hash HashOf(std::vector<std::string> strings) {
  if (strings.size() % 2 != 0) RefuseReply("HGETALL");
  Hash hash;
  for (std::size_t i = 0; i < strings.size(); i += 2) {
    hash.insert_or_assign(std::move(strings[i]), std::move(strings[i + 1]));
  }
  return hash;
}

std::string TypeOf(const redisReply& reply) {
  RefuseError(reply, "TYPE");
  if (reply.type != REDIS_REPLY_STATUS) RefuseReply("TYPE");
  return std::string(TextOf(reply));
}

// --- Guesses -------------------------------------------------------------------------------------

Guess GuessOf(std::string_view type) {
  if (type == "hash") return Guess::kHash;
  return type == "list" ? Guess::kList : Guess::kOther;
}

Guess GuessOf(const Stored& value) {
  if (std::holds_alternative<Hash>(value)) return Guess::kHash;
  return std::holds_alternative<List>(value) ? Guess::kList : Guess::kOther;
}

void AppendRead(const std::string& key, Guess guess, LivePipeline* pipeline) {
  switch (guess) {
    case Guess::kHash:
      return pipeline->Append({"HGETALL", key});
    case Guess::kList:
      return pipeline->Append({"LRANGE", key, "0", "-1"});
    case Guess::kOther:
      return pipeline->Append({"TYPE", key});
  }
}

// Takes what AppendRead has asked for: an empty hash or list of a key that is gone. False when it
// holds something else than was thought.
bool TakeRead(const redisReply& reply, Guess guess, Stored* value) {
  if (guess == Guess::kOther) {
    const std::string type = TypeOf(reply);
    if (type == "none") {
      *value = Hash();
    } else {
      *value = OtherType();
    }
    return type == "none" || GuessOf(type) == Guess::kOther;
  }
  if (reply.type == REDIS_REPLY_ERROR && TextOf(reply).substr(0, 10) == "WRONGTYPE ") return false;
  if (guess == Guess::kHash) {
    *value = HashOf(StringsOf(reply, "HGETALL"));
  } else {
    *value = StringsOf(reply, "LRANGE");
  }
  return true;
}

// Asks what these keys hold now. One that is gone is taken for a hash.
void AskTypes(redisContext* context, const Places& places) {
  for (std::size_t begin = 0; begin < places.size(); begin += kKeysInPipeline) {
    const std::size_t end = std::min(places.size(), begin + kKeysInPipeline);
    LivePipeline pipeline(context);
    for (std::size_t i = begin; i < end; ++i) pipeline.Append({"TYPE", places[i]->first});
    for (std::size_t i = begin; i < end; ++i) {
      const std::string type = TypeOf(*pipeline.Next());
      places[i]->second = type == "none" ? Guess::kHash : GuessOf(type);
    }
  }
}

// Adds keys, with what likely has of them or, where it has nothing, what they hold.
void AddKeys(redisContext* context, const std::vector<std::string>& keys, const Server& likely,
             Guesses* guesses) {
  Places unknown;
  for (const std::string& key : keys) {
    const auto [place, is_new] = guesses->try_emplace(key, Guess::kHash);
    if (!is_new) continue;
    const auto known = likely.keys.find(key);
    if (known == likely.keys.end()) {
      unknown.push_back(place);
    } else {
      place->second = GuessOf(known->second);
    }
  }
  AskTypes(context, unknown);
}

// --- What was read -------------------------------------------------------------------------------

// True of what TakeRead has of a key that is gone.
bool IsEmpty(const Stored& value) {
  if (const Hash* hash = std::get_if<Hash>(&value)) return hash->empty();
  const List* list = std::get_if<List>(&value);
  return list != nullptr && list->empty();
}

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

// Appends the keys that match the pattern, some of them again and again. Does not block the server,
// however many it has.
void ScanKeys(redisContext* context, const std::string& pattern, std::vector<std::string>* keys) {
  // Whatever happens to its keys meanwhile, a server gives no cursor twice before the last one.
  std::set<std::string> cursors;
  std::string cursor = "0";
  do {
    if (!cursors.insert(cursor).second || cursors.size() > kMostScanSteps) {
      throw std::runtime_error("Redis does not come to an end of listing its keys");
    }
    const Reply reply =
        AskServer(context, {"SCAN", cursor, "MATCH", pattern, "COUNT", kKeysInScan});
    RefuseError(*reply, "SCAN");
    if (reply->type != REDIS_REPLY_ARRAY || reply->elements != 2) RefuseReply("SCAN");
    if (reply->element[0]->type != REDIS_REPLY_STRING) RefuseReply("SCAN");
    cursor = TextOf(*reply->element[0]);
    for (std::string& key : StringsOf(*reply->element[1], "SCAN")) keys->push_back(std::move(key));
  } while (cursor != "0");
}

std::vector<std::string> MatchingKeys(redisContext* context, const ReadingScope& scope) {
  std::vector<std::string> keys;
  for (const std::string& pattern : scope.patterns) ScanKeys(context, pattern, &keys);
  return keys;
}

// --- In one transaction --------------------------------------------------------------------------

// A server whose memory is full queues no commands, though it would carry these out.
class MemoryIsFull : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The replies of a transaction to its commands.
Reply Execute(LivePipeline* pipeline, std::size_t commands) {
  std::string refusal;
  for (std::size_t i = 0; i < commands + 1; ++i) {  // and MULTI
    const Reply reply = pipeline->Next();
    if (reply->type == REDIS_REPLY_ERROR && refusal.empty()) refusal = TextOf(*reply);
  }
  Reply results = pipeline->Next();
  if (refusal.rfind("OOM ", 0) == 0) throw MemoryIsFull("Redis refuses to be read: " + refusal);
  if (!refusal.empty()) throw std::runtime_error("Redis refuses to be read: " + refusal);
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
      const auto [place, is_new] = guesses->try_emplace(key, Guess::kHash);
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

Server ReadKeys(redisContext* context, const std::vector<std::string>& keys, const Server& likely) {
  Guesses guesses;
  AddKeys(context, keys, likely, &guesses);
  Server store;
  (void)ReadInPipelines(context, &guesses, &store);
  return store;
}

}  // namespace ostrafel
