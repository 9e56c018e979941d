// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/loss.h"

#include "tool/grouped.h"

namespace ostrafel {

std::string ShownName(std::string_view name) {
  if (name.size() <= kLongestShown) return std::string(name);
  constexpr std::size_t end = kLongestShown / 2;
  return std::string(name.substr(0, end)) + "... (" + Counted(name.size(), "byte") + ") ..." +
         std::string(name.substr(name.size() - end));
}

void Losses::insert(const Loss& loss) {
  auto key = by_key_.find(loss.key);
  if (key == by_key_.end()) key = by_key_.emplace(loss.key, Records()).first;
  const bool is_shortened = loss.record.size() > kLongestShown;
  key->second.insert({ShownName(loss.record), std::string(loss.reason),
                      is_shortened ? std::hash<std::string_view>()(loss.record) : 0});
}

void Losses::merge(Losses& others) {
  by_key_.merge(others.by_key_);
  // Those of keys that both have are left.
  for (auto& [key, records] : others.by_key_) by_key_.find(key)->second.merge(records);
  others.by_key_.clear();
}

std::size_t Losses::size() const {
  std::size_t size = 0;
  for (const auto& [key, records] : by_key_) size += records.size();
  return size;
}

bool Losses::HasWhole(std::string_view key) const {
  const auto found = by_key_.find(key);
  return found != by_key_.end() && found->second.begin()->shown.empty();
}

}  // namespace ostrafel
