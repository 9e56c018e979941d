// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/change_plan.h"

#include <algorithm>
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

void WriteWhole(const std::string& key, const Stored& value, std::vector<Command>* commands) {
  if (const Hash* hash = std::get_if<Hash>(&value)) {
    LongCommand command({"HSET", key}, commands);
    for (const auto& [field, text] : *hash) command.Append({field, text});
  } else if (const List* list = std::get_if<List>(&value)) {
    LongCommand command({"RPUSH", key}, commands);
    for (const std::string& element : *list) command.Append({element});
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

void ChangeList(const KeyChange& change, const List& stored, std::vector<Command>* commands) {
  const std::string& key = change.begin->key;
  const List target = ChangedList(change, stored);
  const auto count = static_cast<std::size_t>(change.end - change.begin);
  const bool stays_long = std::all_of(change.begin, change.end, [](const Difference& difference) {
    return difference.change == Change::kChanged;
  });
  const auto start = static_cast<std::size_t>(
      std::mismatch(stored.begin(), stored.end(), target.begin(), target.end()).first -
      stored.begin());
  const auto end = static_cast<std::size_t>(
      std::mismatch(stored.rbegin(), stored.rend(), target.rbegin(), target.rend()).first -
      stored.rbegin());
  const std::size_t from_start = target.size() - start;  // to push behind what is kept
  const std::size_t from_end = target.size() - end;      // to push before what is kept
  if (stays_long && count <= std::min(from_start, from_end)) {
    for (const Difference* at = change.begin; at != change.end; ++at) {
      const std::size_t index = std::get<Element>(at->record).stored_index;
      commands->push_back({"LSET", key, std::to_string(index), *at->wanted});
    }
  } else if (from_start <= from_end) {
    if (start == 0) {
      commands->push_back({"DEL", key});
    } else if (start < stored.size()) {
      commands->push_back({"LTRIM", key, "0", std::to_string(start - 1)});
    }
    LongCommand pushed({"RPUSH", key}, commands);
    for (std::size_t i = start; i < target.size(); ++i) pushed.Append({target[i]});
  } else {
    if (end < stored.size()) commands->push_back({"LTRIM", key, "-" + std::to_string(end), "-1"});
    LongCommand pushed({"LPUSH", key}, commands);
    for (std::size_t i = from_end; i > 0; --i) pushed.Append({target[i - 1]});
  }
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
    ChangeList(change, std::get<List>(stored.keys.find(key)->second), &commands);
  }
  return commands;
}

}  // namespace ostrafel
