// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/store_reading.h"

#include <algorithm>
#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "live/session.h"

namespace ostrafel {

namespace {

// So many keys are asked for in one pipeline: what the server keeps of its answers stays small.
constexpr std::size_t kKeysInPipeline = 1000;

// What a key is taken to hold, which decides how it is read.
enum class Guess { kHash, kList, kOther };

// The keys to read, in the order of their bytes.
using Guesses = std::map<std::string, Guess, std::less<>>;

// What became of reading a key.
enum class Outcome { kRead, kAbsent, kOtherKind };

[[noreturn]] void FailOn(const std::string& command) {
  throw std::runtime_error("Redis answers " + command + " with something else than it should");
}

std::vector<std::string> StringsOf(const redisReply& reply, const std::string& command) {
  RefuseError(reply, command);
  if (reply.type != REDIS_REPLY_ARRAY) FailOn(command);
  std::vector<std::string> strings;
  strings.reserve(reply.elements);
  for (std::size_t i = 0; i < reply.elements; ++i) {
    const redisReply& element = *reply.element[i];
    if (element.type != REDIS_REPLY_STRING) FailOn(command);
    strings.emplace_back(element.str, element.len);
  }
  return strings;
}

Guess GuessOf(std::string_view type) {
  if (type == "hash") return Guess::kHash;
  return type == "list" ? Guess::kList : Guess::kOther;
}

Guess GuessOf(const Stored& value) {
  if (std::holds_alternative<Hash>(value)) return Guess::kHash;
  return std::holds_alternative<List>(value) ? Guess::kList : Guess::kOther;
}

const char* CommandFor(Guess guess) {
  switch (guess) {
    case Guess::kHash:
      return "HGETALL";
    case Guess::kList:
      return "LRANGE";
    case Guess::kOther:
      break;
  }
  return "TYPE";
}

void AppendRead(const std::string& key, Guess guess, LivePipeline* pipeline) {
  if (guess == Guess::kList) {
    pipeline->Append({"LRANGE", key, "0", "-1"});
  } else {
    pipeline->Append({CommandFor(guess), key});
  }
}

// Makes of a reply what the key holds.
Outcome Take(const redisReply& reply, Guess guess, Stored* value) {
  if (reply.type == REDIS_REPLY_ERROR && TextOf(reply).substr(0, 9) == "WRONGTYPE") {
    return Outcome::kOtherKind;
  }
  const std::string command = CommandFor(guess);
  RefuseError(reply, command);
  if (guess == Guess::kOther) {
    if (reply.type != REDIS_REPLY_STATUS) FailOn(command);
    if (TextOf(reply) == "none") return Outcome::kAbsent;
    if (GuessOf(TextOf(reply)) != Guess::kOther) return Outcome::kOtherKind;
    *value = OtherType();
    return Outcome::kRead;
  }
  std::vector<std::string> strings = StringsOf(reply, command);
  if (strings.empty()) return Outcome::kAbsent;
  if (guess == Guess::kList) {
    *value = std::move(strings);
    return Outcome::kRead;
  }
  if (strings.size() % 2 != 0) FailOn(command);
  Hash hash;
  for (std::size_t i = 0; i < strings.size(); i += 2) {
    hash.insert_or_assign(std::move(strings[i]), std::move(strings[i + 1]));
  }
  *value = std::move(hash);
  return Outcome::kRead;
}

// Asks what these keys hold now. One that is gone is taken for a hash.
void AskTypes(redisContext* context, const std::vector<std::string>& keys, Guesses* guesses) {
  for (std::size_t begin = 0; begin < keys.size(); begin += kKeysInPipeline) {
    const std::size_t end = std::min(keys.size(), begin + kKeysInPipeline);
    LivePipeline pipeline(context);
    for (std::size_t i = begin; i < end; ++i) pipeline.Append({"TYPE", keys[i]});
    for (std::size_t i = begin; i < end; ++i) {
      const Reply reply = pipeline.Next();
      RefuseError(*reply, "TYPE");
      if (reply->type != REDIS_REPLY_STATUS) FailOn("TYPE");
      const bool is_gone = TextOf(*reply) == "none";
      (*guesses)[keys[i]] = is_gone ? Guess::kHash : GuessOf(TextOf(*reply));
    }
  }
}

// Adds keys, with what likely has of them or, where it has nothing, what they hold.
void AddKeys(redisContext* context, const std::vector<std::string>& keys, const Server& likely,
             Guesses* guesses) {
  std::vector<std::string> unknown;
  for (const std::string& key : keys) {
    const auto [place, is_new] = guesses->try_emplace(key, Guess::kHash);
    if (!is_new) continue;
    const auto found = likely.keys.find(key);
    if (found != likely.keys.end()) {
      place->second = GuessOf(found->second);
    } else {
      unknown.push_back(key);
    }
  }
  AskTypes(context, unknown, guesses);
}

// All keys that match the pattern, sorted. Does not block the server, however many it has.
std::vector<std::string> ScanKeys(redisContext* context, const std::string& pattern) {
  std::vector<std::string> keys;
  std::string cursor = "0";
  do {
    const Reply reply = AskServer(context, {"SCAN", cursor, "MATCH", pattern, "COUNT", "1000"});
    RefuseError(*reply, "SCAN");
    if (reply->type != REDIS_REPLY_ARRAY || reply->elements != 2) FailOn("SCAN");
    cursor = TextOf(*reply->element[0]);
    if (cursor.empty()) FailOn("SCAN");
    for (std::string& key : StringsOf(*reply->element[1], "SCAN")) keys.push_back(std::move(key));
  } while (cursor != "0");
  return keys;
}

void MakeUnique(std::vector<std::string>* keys) {
  std::sort(keys->begin(), keys->end());
  keys->erase(std::unique(keys->begin(), keys->end()), keys->end());
}

std::vector<std::string> MatchingKeys(redisContext* context, const ReadingScope& scope) {
  std::vector<std::string> keys;
  for (const std::string& pattern : scope.patterns) {
    std::vector<std::string> found = ScanKeys(context, pattern);
    std::move(found.begin(), found.end(), std::back_inserter(keys));
  }
  MakeUnique(&keys);
  return keys;
}

// --- In one transaction --------------------------------------------------------------------------

// The replies of a transaction to its commands.
Reply Execute(LivePipeline* pipeline, std::size_t commands) {
  RefuseError(*pipeline->Next(), "MULTI");
  std::string refusal;
  for (std::size_t i = 0; i < commands; ++i) {
    const Reply reply = pipeline->Next();
    if (reply->type == REDIS_REPLY_ERROR && refusal.empty()) refusal = TextOf(*reply);
  }
  Reply results = pipeline->Next();
  if (!refusal.empty()) throw std::runtime_error("Redis refuses to be read: " + refusal);
  RefuseError(*results, "EXEC");
  if (results->type != REDIS_REPLY_ARRAY || results->elements != commands) FailOn("EXEC");
  return results;
}

// Reads all keys, and which there are, at one moment. False when there are others, or they hold
// something else than was thought; guesses is then mended.
bool ReadAtOnce(redisContext* context, const ReadingScope& scope, Guesses* guesses,
                Reading* reading) {
  LivePipeline pipeline(context);
  pipeline.Append({"MULTI"});
  for (const std::string& pattern : scope.patterns) pipeline.Append({"KEYS", pattern});
  for (const auto& [key, guess] : *guesses) AppendRead(key, guess, &pipeline);
  pipeline.Append({"EXEC"});
  const Reply results = Execute(&pipeline, scope.patterns.size() + guesses->size());

  reading->store.keys.clear();
  reading->unsteady.clear();
  std::size_t i = scope.patterns.size();
  for (const auto& [key, guess] : *guesses) {
    Stored value;
    const Outcome outcome = Take(*results->element[i++], guess, &value);
    if (outcome == Outcome::kOtherKind) reading->unsteady.push_back(key);
    if (outcome != Outcome::kRead) continue;
    reading->store.keys.emplace_hint(reading->store.keys.end(), key, std::move(value));
  }
  for (i = 0; i < scope.patterns.size(); ++i) {
    for (const std::string& key : StringsOf(*results->element[i], "KEYS")) {
      if (guesses->count(key) == 0) reading->unsteady.push_back(key);
    }
  }
  MakeUnique(&reading->unsteady);
  AskTypes(context, reading->unsteady, guesses);
  return reading->unsteady.empty();
}

// --- In parts ------------------------------------------------------------------------------------

// Reads these keys. Gives tell each with what it holds, or null when it is gone or holds something
// else than was thought, which mends guesses.
template <typename Tell>
void ReadInPipelines(redisContext* context, const std::vector<std::string>& keys, Guesses* guesses,
                     const Tell& tell) {
  for (std::size_t begin = 0; begin < keys.size(); begin += kKeysInPipeline) {
    const std::size_t end = std::min(keys.size(), begin + kKeysInPipeline);
    LivePipeline pipeline(context);
    for (std::size_t i = begin; i < end; ++i) {
      AppendRead(keys[i], guesses->find(keys[i])->second, &pipeline);
    }
    std::vector<std::string> others;
    for (std::size_t i = begin; i < end; ++i) {
      const Reply reply = pipeline.Next();
      Stored value;
      const Outcome outcome = Take(*reply, guesses->find(keys[i])->second, &value);
      if (outcome == Outcome::kOtherKind) {
        others.push_back(keys[i]);
      } else {
        tell(keys[i], outcome == Outcome::kRead ? &value : nullptr);
      }
    }
    if (others.empty()) continue;
    AskTypes(context, others, guesses);
    for (const std::string& key : others) tell(key, nullptr);
  }
}

bool IsEqual(const Stored& a, const Stored& b) {
  if (a.index() != b.index()) return false;
  if (const Hash* hash = std::get_if<Hash>(&a)) return *hash == std::get<Hash>(b);
  if (const List* list = std::get_if<List>(&a)) return *list == std::get<List>(b);
  return true;
}

// Reads the keys again and puts what they hold into reading. Those that held something else are
// unsteady.
void ReadAgain(redisContext* context, const std::vector<std::string>& keys, Guesses* guesses,
               Reading* reading) {
  std::vector<std::string> unsteady;
  auto& stored = reading->store.keys;
  ReadInPipelines(context, keys, guesses, [&](const std::string& key, Stored* value) {
    const auto before = stored.find(key);
    if (value == nullptr) {
      if (before != stored.end()) {
        unsteady.push_back(key);
        stored.erase(before);
      }
    } else if (before == stored.end()) {
      unsteady.push_back(key);
      stored.emplace(key, std::move(*value));
    } else if (!IsEqual(before->second, *value)) {
      unsteady.push_back(key);
      before->second = std::move(*value);
    }
  });
  reading->unsteady = std::move(unsteady);
}

std::vector<std::string> NamesOf(const Guesses& guesses) {
  std::vector<std::string> keys;
  keys.reserve(guesses.size());
  for (const auto& [key, guess] : guesses) keys.push_back(key);
  return keys;
}

Reading ReadInParts(redisContext* context, const ReadingScope& scope, const Server& likely,
                    Guesses guesses) {
  Reading reading;
  ReadAgain(context, NamesOf(guesses), &guesses, &reading);
  // Keys may have come, and all that is there may have changed.
  AddKeys(context, MatchingKeys(context, scope), likely, &guesses);
  std::vector<std::string> keys = NamesOf(guesses);
  for (int readings = 1; readings < kMostReadings && !keys.empty(); ++readings) {
    ReadAgain(context, keys, &guesses, &reading);
    keys = reading.unsteady;
  }
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
      return ReadInParts(context, scope, likely, std::move(guesses));
    }
    if (ReadAtOnce(context, scope, &guesses, &reading)) break;
  }
  return reading;
}

Server ReadKeys(redisContext* context, const std::vector<std::string>& keys, const Server& likely) {
  Guesses guesses;
  AddKeys(context, keys, likely, &guesses);
  Server store;
  ReadInPipelines(context, NamesOf(guesses), &guesses, [&](const std::string& key, Stored* value) {
    if (value != nullptr) store.keys.emplace_hint(store.keys.end(), key, std::move(*value));
  });
  return store;
}

}  // namespace ostrafel
