// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/change_plan.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "diff/comparison.h"

namespace ostrafel {

namespace {

// Commands that begin with the same words and take as many others as there are.
class LongCommand {
 public:
  LongCommand(Command start, std::vector<Command>* commands)
      : start_(std::move(start)), commands_(*commands) {}

  // Appends words that must not be parted.
  void Append(const std::vector<std::string>& words) {
    if (commands_.empty() || !is_begun_ || commands_.back().size() + words.size() > kMostWords) {
      commands_.push_back(start_);
      is_begun_ = true;
    }
    commands_.back().insert(commands_.back().end(), words.begin(), words.end());
  }

 private:
  Command start_;
  std::vector<Command>& commands_;
  bool is_begun_ = false;
};

// Writes a key that a load can write: a hash or a list.
void WriteWhole(const std::string& key, const Stored& value, std::vector<Command>* commands) {
  if (const Hash* hash = std::get_if<Hash>(&value)) {
    LongCommand command({"HSET", key}, commands);
    for (const auto& [field, text] : *hash) command.Append({field, text});
  } else {
    LongCommand command({"RPUSH", key}, commands);
    for (const std::string& element : std::get<List>(value)) command.Append({element});
  }
}

void ChangeHash(const KeyChange& change, std::vector<Command>* commands) {
  // Written first: a hash that loses its last field is gone, and with it when it expires.
  LongCommand written({"HSET", change.begin->key}, commands);
  for (const Difference* at = change.begin; at != change.end; ++at) {
    if (at->wanted) written.Append({std::get<std::string>(at->record), *at->wanted});
  }
  LongCommand removed({"HDEL", change.begin->key}, commands);
  for (const Difference* at = change.begin; at != change.end; ++at) {
    if (!at->wanted) removed.Append({std::get<std::string>(at->record)});
  }
}

// What the list becomes.
List ChangedList(const KeyChange& change, const List& stored) {
  List list;
  std::size_t next = 0;
  for (const Difference* at = change.begin; at != change.end; ++at) {
    const std::size_t index = std::get<Element>(at->record).stored_index;
    for (; next < index; ++next) list.push_back(stored[next]);
    if (at->wanted) list.push_back(*at->wanted);
    if (at->stored) ++next;
  }
  for (; next < stored.size(); ++next) list.push_back(stored[next]);
  return list;
}

// The place of the first element of each value.
using FirstPlaces = std::unordered_map<std::string_view, std::size_t>;

FirstPlaces FirstPlacesIn(const List& list) {
  FirstPlaces places;
  for (std::size_t i = 0; i < list.size(); ++i) places.emplace(list[i], i);
  return places;
}

// Puts in elements that are missing before one that is stored, or at the end. False where LINSERT
// would find another one: it takes the first of the value.
bool InsertElements(const Difference* begin, const Difference* end, const List& stored,
                    const FirstPlaces& first_places, std::vector<Command>* commands) {
  const std::size_t index = std::get<Element>(begin->record).stored_index;
  if (index == stored.size()) {
    LongCommand pushed({"RPUSH", begin->key}, commands);
    for (const Difference* at = begin; at != end; ++at) pushed.Append({*at->wanted});
    return true;
  }
  const std::string& next = stored[index];
  if (first_places.find(next)->second != index) return false;
  for (const Difference* at = begin; at != end; ++at) {
    commands->push_back({"LINSERT", at->key, "BEFORE", next, *at->wanted});
    if (*at->wanted == next && at + 1 != end) return false;
  }
  return true;
}

// Changes the elements one by one, from the last to the first: those before one are as stored then.
// Nothing where a command would find another element.
std::optional<std::vector<Command>> EditElements(const KeyChange& change, const List& stored) {
  const FirstPlaces first_places = FirstPlacesIn(stored);
  const auto index_of = [](const Difference* at) {
    return std::get<Element>(at->record).stored_index;
  };
  std::vector<Command> commands;
  for (const Difference* end = change.end; end != change.begin;) {
    const Difference* at = end - 1;
    const std::size_t index = index_of(at);
    if (at->change == Change::kMissing) {
      while (at != change.begin && (at - 1)->change == Change::kMissing &&
             index_of(at - 1) == index) {
        --at;
      }
      if (!InsertElements(at, end, stored, first_places, &commands)) return std::nullopt;
    } else if (at->change == Change::kChanged) {
      commands.push_back({"LSET", at->key, std::to_string(index), *at->wanted});
    } else if (first_places.find(stored[index])->second == index) {
      commands.push_back({"LREM", at->key, "1", stored[index]});
    } else {
      return std::nullopt;
    }
    end = at;
  }
  return commands;
}

// The elements that two lists have in common from there on.
template <typename Iterator>
std::size_t CountCommon(Iterator begin, Iterator end, Iterator other_begin, Iterator other_end) {
  return static_cast<std::size_t>(std::mismatch(begin, end, other_begin, other_end).first - begin);
}

// Cuts off the end that is longer in common from the rest, and pushes that anew.
void PushRest(const std::string& key, const List& stored, const List& target,
              std::vector<Command>* commands) {
  const std::size_t start = CountCommon(stored.begin(), stored.end(), target.begin(), target.end());
  const std::size_t end =
      CountCommon(stored.rbegin(), stored.rend(), target.rbegin(), target.rend());
  const std::size_t kept = std::max(start, end);
  const bool keeps_start = start >= end;
  if (kept == 0) {
    commands->push_back({"DEL", key});
  } else if (kept < stored.size() && keeps_start) {
    commands->push_back({"LTRIM", key, "0", std::to_string(kept - 1)});
  } else if (kept < stored.size()) {
    commands->push_back({"LTRIM", key, "-" + std::to_string(kept), "-1"});
  }
  LongCommand pushed({keeps_start ? "RPUSH" : "LPUSH", key}, commands);
  for (std::size_t i = kept; i < target.size(); ++i) {
    pushed.Append({keeps_start ? target[i] : target[target.size() - 1 - i]});
  }
}

std::size_t CountWords(const std::vector<Command>& commands) {
  return std::accumulate(
      commands.begin(), commands.end(), std::size_t{0},
      [](std::size_t words, const Command& command) { return words + command.size(); });
}

std::vector<Command> ChangeList(const KeyChange& change, const List& stored) {
  std::vector<Command> pushed;
  PushRest(change.begin->key, stored, ChangedList(change, stored), &pushed);
  std::optional<std::vector<Command>> edited = EditElements(change, stored);
  return edited && CountWords(*edited) <= CountWords(pushed) ? *std::move(edited) : pushed;
}

}  // namespace

std::vector<KeyChange> GroupByKey(const Differences& differences) {
  std::vector<KeyChange> changes;
  for (const Difference& difference : differences) {
    if (changes.empty() || changes.back().begin->key != difference.key) {
      changes.push_back({&difference, &difference});
    }
    ++changes.back().end;
  }
  return changes;
}

std::size_t CountRecords(const KeyChange& change, const Server& stored, const Server& wanted) {
  if (!std::holds_alternative<WholeKey>(change.begin->record)) {
    return static_cast<std::size_t>(change.end - change.begin);
  }
  const std::string& key = change.begin->key;
  return CountRecords(stored, key) + CountRecords(wanted, key);
}

std::vector<Command> CommandsFor(const KeyChange& change, const Server& stored,
                                 const Server& wanted) {
  std::vector<Command> commands;
  const Difference& first = *change.begin;
  const std::string& key = first.key;
  if (std::holds_alternative<WholeKey>(first.record)) {
    if (first.change != Change::kMissing) commands.push_back({"DEL", key});
    if (first.change != Change::kExtra) WriteWhole(key, wanted.keys.find(key)->second, &commands);
  } else if (first.type == KeyType::kHash) {
    ChangeHash(change, &commands);
  } else {
    commands = ChangeList(change, std::get<List>(stored.keys.find(key)->second));
  }
  return commands;
}

}  // namespace ostrafel
