// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/reached_keys.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <variant>

#include "base/affixes.h"
#include "layout/layout.h"
#include "layout/resource_id.h"
#include "layout/value_rendering.h"
#include "text/utf8.h"

namespace ostrafel {

namespace {

constexpr std::string_view kObjectMarker = "&&Object ";
constexpr std::string_view kObjectRefMarker = "&&ObjectRef ";
constexpr std::string_view kArrayMarker = "&&Array ";

// True of a field that an object with an id may have beside it.
bool IsOtherMember(std::string_view field) {
  if (!IsText(field) || field == IdMember) return false;
  for (const std::string_view marker : {kObjectMarker, kObjectRefMarker, kArrayMarker}) {
    if (StartsWith(field, std::string(marker) + IdMember + ' ')) return false;
  }
  return true;
}

// True of what a create makes of an object that says its key: with nothing beside the id it would
// be a link.
bool HoldsItsKey(const std::string& key, const Stored& value) {
  const Hash* hash = std::get_if<Hash>(&value);
  if (hash == nullptr || !IsText(key)) return false;
  const auto id = hash->find(IdMember);
  if (id == hash->end()) return false;
  std::string text = key;
  EscapeText(text);
  return id->second == '"' + text + '"' &&
         std::any_of(hash->begin(), hash->end(),
                     [](const auto& record) { return IsOtherMember(record.first); });
}

// Calls found with all that the record of this hash leads to.
template <typename Found>
void FindTargets(const Server& server, const std::string& key, std::string_view field,
                 const Found& found) {
  const bool is_object = StartsWith(field, kObjectMarker);
  if (!is_object && !StartsWith(field, kArrayMarker)) return;
  const std::string_view rest = field.substr((is_object ? kObjectMarker : kArrayMarker).size());
  for (std::size_t blank = rest.find(' '); blank != std::string_view::npos;
       blank = rest.find(' ', blank + 1)) {
    const auto target = server.keys.find(rest.substr(blank + 1));
    if (target == server.keys.end()) continue;
    const KeyType type = is_object ? KeyType::kHash : KeyType::kList;
    const bool is_part = KeyTypeOf(target->second) == type &&
                         target->first == DerivedKey(key, std::string(rest.substr(0, blank)));
    if (is_part || (is_object && HoldsItsKey(target->first, target->second))) found(target->first);
  }
}

// Likewise, of an element of a list.
template <typename Found>
void FindTarget(const Server& server, std::string_view element, const Found& found) {
  for (const std::string_view marker : {kObjectMarker, kArrayMarker}) {
    if (!StartsWith(element, marker)) continue;
    const auto target = server.keys.find(element.substr(marker.size()));
    if (target != server.keys.end()) found(target->first);
  }
}

}  // namespace

std::set<std::string> ReachedFrom(const Server& server, std::vector<std::string> keys) {
  std::set<std::string> reached;
  const auto add = [&](const std::string& target) { keys.push_back(target); };
  while (!keys.empty()) {
    const auto [place, is_new] = reached.insert(std::move(keys.back()));
    keys.pop_back();
    const auto entry = server.keys.find(*place);
    if (!is_new || entry == server.keys.end()) continue;
    if (const Hash* hash = std::get_if<Hash>(&entry->second)) {
      for (const auto& [field, value] : *hash) {
        if (value.empty()) FindTargets(server, *place, field, add);
      }
    } else if (const List* list = std::get_if<List>(&entry->second)) {
      for (const std::string& element : *list) FindTarget(server, element, add);
    }
  }
  return reached;
}

std::set<std::string> ReachedFrom(const Server& server, const ExportScope& scope) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : server.keys) {
    if (IsInScope(scope, key)) keys.push_back(key);
  }
  return ReachedFrom(server, std::move(keys));
}

Server WhatIsExported(const Server& before, const ExportScope& scope, const Server& after) {
  const std::set<std::string> reached = ReachedFrom(before, scope);
  Server exported;
  for (const auto& entry : before.keys) {
    if (reached.count(entry.first) != 0 || after.keys.count(entry.first) != 0) {
      exported.keys.insert(entry);
    }
  }
  return exported;
}

}  // namespace ostrafel
