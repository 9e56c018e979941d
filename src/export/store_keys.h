// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The keys of a store and how their records lead from one to the other: all of a store that is kept
// in memory.
#ifndef OSTRAFEL_EXPORT_STORE_KEYS_H_
#define OSTRAFEL_EXPORT_STORE_KEYS_H_

#include <hiredis/hiredis.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "export/value_facts.h"
#include "layout/record_parts.h"
#include "live/key_stream.h"

namespace ostrafel {

struct KeyFacts;

/// A key with what is known of it.
using KeyEntry = std::pair<const std::string, KeyFacts>;

/// A key that a record of an object or an array points to.
struct Child {
  KeyEntry* entry;
  bool is_object;    ///< The record says that it holds a hash, not a list.
  bool is_in_place;  ///< It is the key that a create gives a part that stands there.
  bool is_first;     ///< Of the readings of one record.
};

struct KeyFacts : ValueFacts {
  bool is_in_scope = false;  ///< At or below the URI, or a part of what is.
  bool is_read = false;
  bool has_place = false;       ///< A record leads to it from where a create would have it.
  std::vector<Child> children;  ///< In the order in which they are written.

  // The plan's.
  KeyEntry* owner = nullptr;   ///< The resource that a part is written with.
  std::uint32_t document = 0;  ///< The last document that it stands in, counted from 1.
  bool is_reached = false;     ///< What stands in a document has a record of it.

  bool is_written = false;  ///< It is in a document that was made.
};

/// Comes before the other one by its name: keys are kept in no order.
[[nodiscard]] inline bool ComesBefore(const KeyEntry* key, const KeyEntry* other) {
  return key->first < other->first;
}

/// Entries stay where they are.
using StoreKeys = std::unordered_map<std::string, KeyFacts>;

/// What an export is of.
struct ExportScope {
  std::string uri;
  bool is_whole = true;  ///< All keys below the URI, too.
};

/// The globs of the keys that may be in the scope (FindKeys of a server).
[[nodiscard]] std::vector<std::string> PatternsOf(const ExportScope& scope);

/// True when a resource's key, or a part's, is at or below the URI.
[[nodiscard]] bool IsInScope(const ExportScope& scope, const std::string& key);

/// True when a hash is a resource, or an object with a key of its own choice, and not a part.
[[nodiscard]] bool IsResource(const KeyEntry& entry);

/// True when the key holds something that ought to be in a document, and is in none: it is in the
/// scope, or a part of what is.
[[nodiscard]] bool IsLost(const KeyEntry& entry);

/// True when a part is written where a record of it stands, if that says of the part what it holds:
/// in the place in which a create would have it or, when no record stands there, anywhere.
[[nodiscard]] bool StandsHere(const KeyEntry& part, bool is_object, bool is_in_place);

/// Chooses, of the readings of a record of an object, the one whose object the store has: in its
/// place or, as no create makes such a record otherwise, with a key of its own choice; the first
/// one, if there are several. Sets likely to how many there are, but to no less than 1 where the
/// first reading is in place: an empty object has no key.
[[nodiscard]] std::size_t ChosenReading(const StoreKeys& keys, RecordReadings* readings);

/// A store to learn from, whatever it is kept in.
struct KeySource {
  /// Appends the names of the keys that match the glob, perhaps some of them again and again.
  std::function<void(const std::string& pattern, std::vector<std::string>* names)> find;
  /// Reads keys as StreamKeys does.
  std::function<void(const std::vector<KeyToRead>& keys, const TakeKey& take)> read;
};

/// Reads the names of all keys in the scope, and then these keys and those that their records point
/// to. Of a record with several readings the child is what the chosen one points to
/// (ChosenReading), if the store has that.
[[nodiscard]] StoreKeys LearnKeys(const KeySource& source, const ExportScope& scope);

/// The same of a server, each key at a moment of its own (ScanKeys, StreamKeys).
[[nodiscard]] StoreKeys LearnKeys(redisContext* context, const ExportScope& scope);

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_STORE_KEYS_H_
