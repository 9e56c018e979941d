// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// An update merges new values into what is stored. Before a member is written again, what the store
// still holds for it in an older shape is queued for removal: the field, the reference records, the
// keys of the former object or array with all keys below them, and its links. Otherwise a member
// that turned from an object into a string would leave unreachable keys and dangling records.
//
// The server is asked at once, a round trip for each question; nothing is deleted at once. Removals
// wait in RemovalBatch, so answers show the store as it was before them, unless the batch was
// flushed in between.
//
// Operations return 1 (success) or 0 (failure). They print nothing of their own. Removals queued
// before a failure stay queued. Keys and names are used in glob patterns as they are: "*", "?", "["
// and a backslash in them work as in Redis.
#ifndef OSTRAFEL_STORE_PRUNING_H_
#define OSTRAFEL_STORE_PRUNING_H_

#include <string>

#include "layout/layout.h"
#include "store/server.h"

namespace ostrafel {

/// What the new value will hold at its own key.
enum ExpectedKind {
  StoredHash = 0,  ///< An object. A stored hash survives, because the update merges into it.
  StoredList = 1,  ///< An array. A stored list never survives, because lists are rebuilt whole.
  StoredNone = 2,  ///< A scalar: it has no key of its own.
};

/// Queues the removal of everything that the store still holds for one member in an older shape.
///
///   parent_key  the hash that holds the member, or the list that holds the element
///   name        the member's name; for an element, its decimal index
///   child_key   the key that the new value will use, taken as it is; when empty, the key derived
///               from parent_key and name
///   parent      what parent_key is; from a list, equal elements are removed instead of fields
///   expected    what child_key will hold
///
/// First the stale key (PruneStaleKey); then from the parent the scalar (a field name, or elements
/// equal to the index) and the three reference records to the child key, whatever the new kind is:
/// the writer adds again the one it needs. From a hash also every link of this member, whatever it
/// points to (LinkPattern).
[[nodiscard]] unsigned PruneProperty(Server* server, const std::string& parent_key,
                                     const std::string& name, const std::string& child_key,
                                     ParentKind parent, ExpectedKind expected);

/// Queues the removal of child_key and of every key below it when the key holds another type than
/// expected, or a list; for a key without "&&" in front also of every key below its "&&" twin, but
/// not of the twin itself. A list that begins with a plain value is not searched below; nor is a
/// subtree whose own pattern, not its twin's, lies under a mark of PrunedPrefixes. Fails when the
/// type is not answered, a search fails or a removal cannot be queued.
[[nodiscard]] unsigned PruneStaleKey(Server* server, const std::string& child_key,
                                     ExpectedKind expected);

/// Returns 1 when the first element of the list at key is no reference record, else 0, also when
/// there is no such list. A list is taken to hold either only records or only plain values.
[[nodiscard]] unsigned IsPlainList(Server* server, const std::string& key);

/// Queues the removal of every key that matches pattern; then marks the pattern less its last two
/// characters in PrunedPrefixes. Fails, without the mark, when the search fails or a removal cannot
/// be queued.
[[nodiscard]] unsigned UnlinkMatchingKeys(Server* server, const std::string& pattern);

/// Queues the removal of every field of the hash at key whose name matches pattern. Fails when the
/// search fails or a removal cannot be queued.
[[nodiscard]] unsigned RemoveMatchingFields(Server* server, const std::string& key,
                                            const std::string& pattern);

/// True when the part of pattern before any of its slashes is marked in PrunedPrefixes. For the
/// pattern of a key's subtree these parts are the key's ancestors and the key itself.
[[nodiscard]] bool IsUnderPrunedPrefix(const std::string& pattern);

}  // namespace ostrafel

#endif  // OSTRAFEL_STORE_PRUNING_H_
