// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/pruning.h"

#include <cstddef>
#include <cstdlib>
#include <optional>
#include <vector>

#include "model/batches.h"
#include "model/layout.h"

namespace model {
namespace {

std::string TypeName(ExpectedKind expected) {
  switch (expected) {
    case ExpectedKind::kHash:
      return "hash";
    case ExpectedKind::kList:
      return "list";
    case ExpectedKind::kNone:
      break;
  }
  return "none";
}

// One step of a SCAN or HSCAN.
struct Page {
  long cursor = 0;
  std::vector<std::string> items;
};

std::string CursorText(long cursor) { return std::to_string(static_cast<int>(cursor)); }

// Every step-th item of the reply; none when it is missing or not of the form [cursor, [...]] with
// strings for the cursor and these items.
std::optional<Page> ReadPage(const std::optional<Reply>& reply, std::size_t step) {
  if (!reply || reply->type != Reply::Type::kArray || reply->elements.size() < 2) {
    return std::nullopt;
  }
  const Reply& cursor = reply->elements[0];
  const Reply& items = reply->elements[1];
  if (cursor.type != Reply::Type::kString || items.type != Reply::Type::kArray) {
    return std::nullopt;
  }
  Page page;
  page.cursor = std::strtol(cursor.text.c_str(), nullptr, 10);
  for (std::size_t i = 0; i < items.elements.size(); i += step) {
    if (items.elements[i].type != Reply::Type::kString) return std::nullopt;
    page.items.push_back(items.elements[i].text);
  }
  return page;
}

bool RemoveMatchingFields(RunState& run, const std::string& key, const std::string& pattern) {
  long cursor = 0;
  do {
    const std::optional<Page> page =
        ReadPage(Ask(run, {"HSCAN", key, CursorText(cursor), "MATCH", pattern}), 2);
    if (!page) return false;
    for (const std::string& field : page->items) {
      if (!QueueRemoval(run, key, field, RemovalKind::kField)) return false;
    }
    cursor = page->cursor;
  } while (cursor != 0);
  return true;
}

// A marker counts as one only with something after it.
bool IsReference(const std::string& element) {
  for (const std::string& marker : {kArrayMarker, kObjectMarker, kObjectRefMarker}) {
    if (element.size() > marker.size() && StartsWith(element, marker)) return true;
  }
  return false;
}

bool IsPlainList(RunState& run, const std::string& key) {
  const std::optional<Reply> reply = Ask(run, {"LINDEX", key, "0"});
  return reply && reply->type == Reply::Type::kString && !IsReference(reply->text);
}

bool PruneStaleKey(RunState& run, const std::string& child_key, ExpectedKind expected) {
  const std::optional<Reply> type = Ask(run, {"TYPE", child_key});
  if (!type || type->type != Reply::Type::kStatus) return false;
  if (StartsWith(type->text, "none")) return true;
  if (expected != ExpectedKind::kList && type->text == TypeName(expected)) return true;

  if (!QueueRemoval(run, child_key, "", RemovalKind::kKey)) return false;
  const std::string pattern = PatternBelow(child_key);
  if (type->text == "list" && IsPlainList(run, child_key)) return true;
  if (IsUnderPrunedPrefix(run, pattern)) return true;
  if (!UnlinkMatchingKeys(run, pattern)) return false;
  if (StartsWith(pattern, "&&")) return true;
  return UnlinkMatchingKeys(run, "&&" + pattern);
}

}  // namespace

bool PruneProperty(RunState& run, const std::string& parent_key, const std::string& name,
                   const std::string& child_key, bool in_list, ExpectedKind expected) {
  const std::string stale_key = child_key.empty() ? DerivedKey(parent_key, name) : child_key;
  const std::string suffix = in_list ? stale_key : name + " " + stale_key;
  const RemovalKind kind = in_list ? RemovalKind::kElement : RemovalKind::kField;

  if (!PruneStaleKey(run, stale_key, expected)) return false;
  if (!QueueRemoval(run, parent_key, name, kind)) return false;
  if (!QueueRemoval(run, parent_key, kArrayMarker + suffix, kind)) return false;
  if (!QueueRemoval(run, parent_key, kObjectRefMarker + suffix, kind)) return false;
  if (!QueueRemoval(run, parent_key, kObjectMarker + suffix, kind)) return false;
  if (in_list) return true;
  return RemoveMatchingFields(run, parent_key, kObjectRefMarker + name + " *");
}

bool UnlinkMatchingKeys(RunState& run, const std::string& pattern) {
  long cursor = 0;
  do {
    const std::optional<Page> page =
        ReadPage(Ask(run, {"SCAN", CursorText(cursor), "MATCH", pattern, "COUNT", "1000"}), 1);
    if (!page) return false;
    for (const std::string& key : page->items) {
      if (!QueueRemoval(run, key, "", RemovalKind::kKey)) return false;
    }
    cursor = page->cursor;
  } while (cursor != 0);
  const std::string prefix = pattern.size() < 2 ? pattern : pattern.substr(0, pattern.size() - 2);
  run.pruned_prefixes[prefix] = true;
  return true;
}

bool IsUnderPrunedPrefix(const RunState& run, const std::string& pattern) {
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != '/') continue;
    const auto mark = run.pruned_prefixes.find(pattern.substr(0, i));
    if (mark != run.pruned_prefixes.end() && mark->second) return true;
  }
  return false;
}

}  // namespace model
