// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Bytes as what the server answers while a store is read. The first byte of the input selects how,
// the rest are the answers:
//   0x01        in parts instead of one transaction
//   0x02        some keys, without their names being looked for
//   0x04        what the keys likely hold is known
//   0x08        the server asks for a password
//   0x30        the program gets 1, 2, 7 or any number of bytes at once
//   0x40        one key after the other is given away: of one transaction or, with 0x02, of
//               pipelines
//
// Whatever they are, the store is read or a runtime_error says why not, and nothing is sent but
// questions. What was read are keys that hold something, each of the scope or named in an answer.
// What is given away comes in the order in which it was asked for, and all of it.
// The bytes end, so a SCAN that goes round in circles does.
#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/arena.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/machine.h"
#include "fuzz/memory_server.h"
#include "live/key_stream.h"
#include "live/server_choice.h"
#include "live/store_reading.h"

namespace {

using ostrafel::Reading;

struct Selection {
  bool in_parts = false;
  bool keys_only = false;
  bool is_likely = false;
  bool has_password = false;
  std::size_t bytes_at_once = 1;
  bool is_stream = false;
};

Selection Select(unsigned char selector) {
  constexpr std::array<std::size_t, 4> bytes_at_once = {1, 2, 7, std::size_t{1} << 20};
  return {(selector & 0x01U) != 0,
          (selector & 0x02U) != 0,
          (selector & 0x04U) != 0,
          (selector & 0x08U) != 0,
          bytes_at_once[(selector & 0x30U) >> 4U],
          (selector & 0x40U) != 0};
}

bool IsEmpty(const ostrafel::Stored& value) {
  if (const auto* hash = std::get_if<ostrafel::Hash>(&value)) return hash->empty();
  const auto* list = std::get_if<ostrafel::List>(&value);
  return list != nullptr && list->empty();
}

// What is given away of a stream.
class Stream {
 public:
  [[nodiscard]] ostrafel::TakeKeyName TakeName() {
    return [this](std::string_view name) {
      if (next_ != 0) ReportDifference("a name", "before the keys", std::string(name));
      names_.emplace_back(name);
    };
  }

  [[nodiscard]] ostrafel::TakeKey TakeKey() {
    return [this](std::size_t place, std::optional<ostrafel::Stored> value) {
      if (place != next_++ || place >= keys_.size()) {
        ReportDifference("the place of a key", "the next", std::to_string(place));
      }
      if (!value) return;
      const bool is_gone = IsEmpty(*value);
      if (!is_gone && KeyTypeOf(*value) != to_read_[place].type) {
        ReportDifference("the type of a key", "what was asked for", keys_[place]);
      }
      if (!is_gone) store_.keys[keys_[place]] = std::move(*value);
    };
  }

  // What has come, once the reading has ended well.
  [[nodiscard]] Reading Finish(std::string_view answers) {
    if (next_ != keys_.size()) ReportDifference("the keys", "all", std::to_string(next_));
    for (const std::string& name : names_) {
      if (answers.find(name) == std::string_view::npos) {
        ReportDifference("a name", "in an answer", name);
      }
    }
    return {std::move(store_), {}};
  }

  [[nodiscard]] const std::vector<ostrafel::KeyToRead>& to_read() const { return to_read_; }

 private:
  const std::array<std::string, 3> keys_ = {"/h", "/l", "/none"};
  const std::vector<ostrafel::KeyToRead> to_read_ = {{&keys_[0], ostrafel::KeyType::kHash},
                                                     {&keys_[1], ostrafel::KeyType::kList},
                                                     {&keys_[2], ostrafel::KeyType::kOther}};
  std::size_t next_ = 0;
  std::vector<std::string> names_;
  ostrafel::Server store_;
};

Reading ReadStream(redisContext* context, const Selection& selection, std::string_view answers) {
  Stream stream;
  if (selection.keys_only) {
    StreamKeys(context, stream.to_read(), stream.TakeKey());
  } else {
    StreamKeysAtOnce(context, {"/*", "*"}, stream.to_read(), stream.TakeName(), stream.TakeKey());
  }
  return stream.Finish(answers);
}

// Nothing when it is refused.
std::optional<Reading> Read(const Selection& selection, std::string_view answers) {
  const ostrafel::ReadingScope scope = {{"/*", "*"}, {"/h", "/l", "/none"}};
  ostrafel::Server likely;
  if (selection.is_likely) {
    likely.keys["/h"] = ostrafel::Hash{{"f", "1"}};
    likely.keys["/l"] = ostrafel::List{"1"};
  }
  ostrafel::ServerChoice choice;
  choice.socket_path = "/redis.sock";
  if (selection.has_password) choice.password = "secret";
  try {
    const ostrafel::StoreConnection connection = ostrafel::ConnectTo(choice);
    if (selection.is_stream) return ReadStream(connection.get(), selection, answers);
    if (selection.keys_only) return Reading{ReadKeys(connection.get(), scope.keys, likely), {}};
    return ReadStore(connection.get(), scope, likely,
                     selection.in_parts ? 1 : ostrafel::kKeysAtOnce);
  } catch (const std::runtime_error&) {
    return std::nullopt;
  }
}

void CheckCommands(const std::vector<model::Command>& commands) {
  const std::array<std::string_view, 8> questions = {"AUTH", "TYPE", "SCAN",    "MULTI",
                                                     "KEYS", "EXEC", "HGETALL", "LRANGE"};
  for (const model::Command& command : commands) {
    if (std::find(questions.begin(), questions.end(), command[0]) == questions.end()) {
      ReportDifference("the commands", "questions", command[0]);
    }
  }
}

void CheckReading(const Reading& reading, std::string_view answers) {
  for (const auto& [key, value] : reading.store.keys) {
    if (IsEmpty(value)) ReportDifference("the store", "no empty value", key);
    const bool is_asked_for = key == "/h" || key == "/l" || key == "/none";
    if (!is_asked_for && answers.find(key) == std::string_view::npos) {
      ReportDifference("the store", "no key of nowhere", key);
    }
  }
  const std::vector<std::string>& unsteady = reading.unsteady;
  for (std::size_t i = 1; i < unsteady.size(); ++i) {
    if (unsteady[i - 1] >= unsteady[i]) ReportDifference("the order", "ascending", unsteady[i]);
  }
}

}  // namespace

void TestOneInput(std::string_view input) {
  if (input.empty()) return;
  const Selection selection = Select(static_cast<unsigned char>(input[0]));
  input.remove_prefix(1);
  ByteServer server(input, selection.bytes_at_once);
  Machine machine;
  machine.server = &server;
  // What reads the store takes memory that the sanitizer watches.
  const AllocateInArena allocate_in_arena(false);
  std::optional<Reading> reading;
  {
    const OnMachine on_machine(&machine);
    reading = Read(selection, input);
  }
  CheckCommands(server.commands());
  if (reading) CheckReading(*reading, input);
}
