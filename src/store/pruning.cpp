// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/pruning.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string_view>

#include "layout/layout.h"
#include "redis/replies.h"
#include "store/command_batches.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

// What TYPE answers for each ExpectedKind.
constexpr std::array<std::string_view, 3> kTypeNames = {"hash", "list", "none"};

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

constexpr std::size_t kLongestMarkerSize = std::string_view(ObjectRefMarker).size();

// A marker followed by a target.
bool IsReferenceRecord(std::string_view element) {
  constexpr std::array<std::string_view, 3> markers = {ArrayMarker, ObjectMarker, ObjectRefMarker};
  return std::any_of(markers.begin(), markers.end(), [&](std::string_view marker) {
    return element.size() > marker.size() && StartsWith(element, marker);
  });
}

}  // namespace

unsigned QueueRemoval(redisContext* context, const std::string& key, std::string_view value,
                      RemovalKind kind) {
  if (RemovalBatchCount == BatchLimit) {
    if (FlushRemovalBatch(context) == 0) return 0;
    RemovalBatchCount = 0;
  }
  try {
    switch (kind) {
      case RemoveField:
        QueueText(key.c_str(), value, &RemovalBatch.hash_fields);
        break;
      case RemoveListValue:
        QueueText(key.c_str(), value, &RemovalBatch.list_values);
        break;
      case RemoveKey:
      default:
        RemovalBatch.keys.push_back(key);
    }
  } catch (const std::length_error& error) {
    (void)std::fprintf(stderr, "Failed to push data: %s.\n", error.what());
    return 0;
  }
  ++RemovalBatchCount;
  return 1;
}

unsigned UnlinkMatchingKeys(redisContext* context, const std::string& pattern) {
  const auto ask = [&](int cursor) {
    return Ask(context, "SCAN %d MATCH %s COUNT 1000", cursor, pattern.c_str());
  };
  const auto unlink = [&](const std::string& key) {
    return QueueRemoval(context, key, "", RemoveKey);
  };
  // By reference, because std::function would copy them to the heap.
  if (ScanAll(std::ref(ask), 1, std::ref(unlink)) == 0) return 0;
  const std::size_t kept = pattern.size() < 2 ? pattern.size() : pattern.size() - 2;
  PrunedPrefixes[pattern.substr(0, kept)] = true;
  return 1;
}

unsigned RemoveMatchingFields(redisContext* context, const std::string& key,
                              const std::string& pattern) {
  const auto ask = [&](int cursor) {
    return Ask(context, "HSCAN %s %d MATCH %s", key.c_str(), cursor, pattern.c_str());
  };
  const auto remove = [&](const std::string& field) {
    return QueueRemoval(context, key, field, RemoveField);
  };
  return ScanAll(std::ref(ask), 2, std::ref(remove));  // fields and values alternate
}

bool IsUnderPrunedPrefix(const std::string& pattern) {
  for (std::size_t slash = pattern.find('/'); slash != std::string::npos;
       slash = pattern.find('/', slash + 1)) {
    if (PrunedPrefixes[pattern.substr(0, slash)]) return true;
  }
  return false;
}

unsigned IsPlainList(redisContext* context, const std::string& key) {
  const Reply reply = Ask(context, "LINDEX %s 0", key.c_str());
  if (!reply || reply->type != REDIS_REPLY_STRING) return 0;
  return IsReferenceRecord({reply->str, reply->len}) ? 0 : 1;
}

unsigned PruneStaleKey(redisContext* context, const std::string& child_key, ExpectedKind expected) {
  const Reply reply = Ask(context, "TYPE %s", child_key.c_str());
  if (!reply || reply->type != REDIS_REPLY_STATUS) return 0;
  const std::string_view stored(reply->str, reply->len);
  if (StartsWith(stored, kTypeNames[StoredNone])) return 1;
  if (expected != StoredList && stored == kTypeNames[expected]) return 1;

  if (QueueRemoval(context, child_key, "", RemoveKey) == 0) return 0;
  const std::string pattern = SubtreePattern(child_key);
  if (stored == kTypeNames[StoredList] && IsPlainList(context, child_key) == 1) return 1;
  if (IsUnderPrunedPrefix(pattern)) return 1;
  if (UnlinkMatchingKeys(context, pattern) == 0) return 0;
  if (StartsWith(pattern, "&&")) return 1;
  // The objects and arrays of resources lie below their keys' "&&" twins. These are scanned
  // whatever PrunedPrefixes says of them; the pattern's own mark, looked up above, covers both
  // scans.
  return UnlinkMatchingKeys(context, "&&" + pattern);
}

unsigned PruneProperty(redisContext* context, const std::string& parent_key,
                       const std::string& name, const std::string& child_key, bool in_list,
                       ExpectedKind expected) {
  const std::string derived_key = child_key.empty() ? DerivedKey(parent_key, name) : "";
  const std::string& stale_key = child_key.empty() ? derived_key : child_key;
  if (PruneStaleKey(context, stale_key, expected) == 0) return 0;

  const RemovalKind kind = in_list ? RemoveListValue : RemoveField;
  if (QueueRemoval(context, parent_key, name, kind) == 0) return 0;
  // The records differ in their markers only, which take turns in front of what they share.
  std::string record;
  record.reserve(kLongestMarkerSize + name.size() + 1 + stale_key.size());
  record.assign(kLongestMarkerSize, ' ');
  if (in_list) {
    record.append(stale_key);
  } else {
    AppendRecordEnd(&record, name, stale_key);
  }
  for (const std::string_view marker : {ArrayMarker, ObjectRefMarker, ObjectMarker}) {
    const std::size_t start = kLongestMarkerSize - marker.size();
    (void)marker.copy(&record[start], marker.size());
    const std::string_view text = std::string_view(record).substr(start);
    if (QueueRemoval(context, parent_key, text, kind) == 0) return 0;
  }
  if (in_list) return 1;
  return RemoveMatchingFields(context, parent_key, ReferenceField(ObjectRefMarker, name, "*"));
}

}  // namespace ostrafel
