// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/change_plan.h"

#include <algorithm>
#include <numeric>
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

// The one command for one element that comes or goes beside the first of its value, which names it;
// empty for others.
Command ChangeOneElement(const Difference& difference, const List& stored) {
  const std::size_t index = std::get<Element>(difference.record).stored_index;
  if (difference.change == Change::kChanged || index == stored.size()) return {};
  const auto element = stored.begin() + static_cast<std::ptrdiff_t>(index);
  if (std::find(stored.begin(), element, *element) != element) return {};
  if (difference.change == Change::kExtra) return {"LREM", difference.key, "1", *element};
  return {"LINSERT", difference.key, "BEFORE", *element, *difference.wanted};
}

// Writes the elements one by one.
void SetElements(const KeyChange& change, std::vector<Command>* commands) {
  for (const Difference* at = change.begin; at != change.end; ++at) {
    const std::size_t index = std::get<Element>(at->record).stored_index;
    commands->push_back({"LSET", at->key, std::to_string(index), *at->wanted});
  }
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
  if (change.end - change.begin == 1) {
    Command command = ChangeOneElement(*change.begin, stored);
    if (!command.empty()) return {std::move(command)};
  }
  std::vector<Command> pushed;
  PushRest(change.begin->key, stored, ChangedList(change, stored), &pushed);
  const bool stays_long = std::all_of(change.begin, change.end, [](const Difference& difference) {
    return difference.change == Change::kChanged;
  });
  if (!stays_long) return pushed;
  std::vector<Command> set;
  SetElements(change, &set);
  return CountWords(set) <= CountWords(pushed) ? set : pushed;
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
  std::size_t count = 0;
  for (const Server* server : {&stored, &wanted}) {
    const auto found = server->keys.find(change.begin->key);
    if (found != server->keys.end()) count += CountRecords(found->second);
  }
  return count;
}

std::vector<Command> CommandsFor(const KeyChange& change, const Server& stored,
                                 const Server& wanted) {
  std::vector<Command> commands;
  const Difference& first = *change.begin;
  const std::string& key = first.key;
  if (std::holds_alternative<WholeKey>(first.record)) {
    if (first.change != Change::kMissing) commands.push_back({"DEL", key});
    if (first.change != Change::kExtra) WriteWhole(key, wanted.keys.find(key)->second, &commands);
  } else if (first.kind == Kind::kHash) {
    ChangeHash(change, &commands);
  } else {
    commands = ChangeList(change, std::get<List>(stored.keys.find(key)->second));
  }
  return commands;
}

}  // namespace ostrafel
