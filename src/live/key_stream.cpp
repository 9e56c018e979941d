// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/key_stream.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "live/array_stream.h"
#include "live/key_reading.h"
#include "live/session.h"

namespace ostrafel {

namespace {

// So many keys are asked for while as many are taken. The server has to keep what it answers to
// them, however much they hold.
constexpr std::size_t kKeysAhead = 100;

// What an element says of a key of this type; nothing when it holds another.
std::optional<Stored> ValueOf(ArrayElement element, KeyType type) {
  if (element.type == REDIS_REPLY_ARRAY) {
    if (type == KeyType::kOther) RefuseReply("EXEC");
    if (type == KeyType::kList) return std::move(element.strings);
    return HashOf(std::move(element.strings));
  }
  const std::string& text = element.strings.front();
  if (element.type == REDIS_REPLY_ERROR) {
    if (IsWrongType(text)) return std::nullopt;
    throw std::runtime_error("Redis refuses to be read: " + text);
  }
  if (type != KeyType::kOther) RefuseReply("EXEC");
  if (text == "none") return Hash();
  if (TypeNamed(text) == KeyType::kOther) return OtherType();
  return std::nullopt;
}

}  // namespace

void StreamKeys(redisContext* context, const std::vector<KeyToRead>& keys, const TakeKey& take) {
  LivePipeline pipeline(context);
  std::size_t asked = 0;
  const auto ask = [&] {
    const std::size_t end = std::min(keys.size(), asked + kKeysAhead);
    for (; asked < end; ++asked) AppendRead(*keys[asked].key, keys[asked].type, &pipeline);
  };
  ask();
  // The server answers the next keys while these are taken.
  for (std::size_t place = 0; place < keys.size();) {
    const std::size_t end = asked;
    ask();
    for (; place < end; ++place) {
      Stored value;
      const bool is_taken = TakeRead(*pipeline.Next(), keys[place].type, &value);
      take(place, is_taken ? std::optional<Stored>(std::move(value)) : std::nullopt);
    }
  }
}

void StreamKeysAtOnce(redisContext* context, const std::vector<std::string>& patterns,
                      const std::vector<KeyToRead>& keys, const TakeKeyName& take_name,
                      const TakeKey& take) {
  LivePipeline pipeline(context);
  pipeline.Append({"MULTI"});
  for (const std::string& pattern : patterns) pipeline.Append({"KEYS", pattern});
  for (const KeyToRead& key : keys) AppendRead(*key.key, key.type, &pipeline);
  pipeline.Append({"EXEC"});
  const std::size_t commands = patterns.size() + keys.size();
  const std::string refusal = TakeQueued(&pipeline, commands);
  if (!refusal.empty()) {
    (void)pipeline.Next();
    RefuseQueued(refusal);
  }
  const std::size_t size =
      StreamArray(context, "EXEC", [&](std::size_t place, ArrayElement element) {
        if (place >= commands) return;  // told below
        if (place >= patterns.size()) {
          const std::size_t i = place - patterns.size();
          take(i, ValueOf(std::move(element), keys[i].type));
          return;
        }
        if (element.type == REDIS_REPLY_ERROR) {
          throw std::runtime_error("Redis refuses to be read: " + element.strings.front());
        }
        if (element.type != REDIS_REPLY_ARRAY) RefuseReply("KEYS");
        for (const std::string& name : element.strings) take_name(name);
      });
  if (size != commands) RefuseReply("EXEC");
}

}  // namespace ostrafel
