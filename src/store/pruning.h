// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// An update merges new values into what is stored. Before a member is written again, what the store
// still holds for it in an older shape is queued for removal: the field, the reference records, the
// keys of the former object or array with all keys below them, and its links. Otherwise a member
// that turned from an object into a string would leave unreachable keys and dangling records.
//
// The store is read at once, a round trip for each command; nothing is deleted at once. Removals
// wait in RemovalBatch (store_state.h), so reads see the store as it was before them, unless the
// batch was flushed in between.
//
// Operations return 1 (success) or 0 (failure). They print nothing of their own but QueueRemoval's
// message; the flush of a full batch prints its own. Removals queued before a failure stay queued.
// Keys and names are used in glob patterns as they are: "*", "?" and "[" in them match as Redis
// lets them match.
#ifndef OSTRAFEL_STORE_PRUNING_H_
#define OSTRAFEL_STORE_PRUNING_H_

#include <hiredis/hiredis.h>

#include <string>
#include <string_view>

namespace ostrafel {

/// What the new value will hold at its own key.
enum ExpectedKind {
  StoredHash = 0,  ///< An object. A stored hash survives, because the update merges into it.
  StoredList = 1,  ///< An array. A stored list never survives, because lists are rebuilt whole.
  StoredNone = 2,  ///< A scalar: it has no key of its own.
};

/// What a queued removal removes.
enum RemovalKind {
  RemoveField = 0,      ///< A field of a hash: "HDEL key field".
  RemoveListValue = 1,  ///< All equal elements of a list: "LREM key 0 value".
  RemoveKey = 2,        ///< A whole key: "UNLINK key".
};

/// Queues the removal of everything that Redis still holds for one member in an older shape.
///
///   parent_key  the hash that holds the member; with in_list, the list that holds the element
///   name        the member's name; for an element, its decimal index
///   child_key   the key that the new value will use, taken as it is; when empty, the key derived
///               from parent_key and name
///   in_list     true when parent_key is a list: equal elements are removed instead of fields
///   expected    what child_key will hold
///
/// First the stale key (PruneStaleKey); then from the parent the scalar (a field name, or elements
/// equal to the index) and the three reference records to the child key, whatever the new kind is:
/// the writer adds again the one it needs. From a hash also every link field of this member,
/// whatever it points to; the pattern matches the links of a member whose name goes on after a
/// blank, too.
[[nodiscard]] unsigned PruneProperty(redisContext* context, const std::string& parent_key,
                                     const std::string& name, const std::string& child_key,
                                     bool in_list, ExpectedKind expected);

/// Queues the removal of child_key and of every key below it when the key holds another type than
/// expected, or a list; for a key without "&&" in front also of every key below its "&&" twin, but
/// not of the twin itself. A list of plain values has nothing below it and costs no scan. Neither
/// does a subtree that was pruned before in this run; the mark of the twin's subtree does not
/// count. Fails when TYPE does not answer with a status, a search fails or a removal cannot be
/// queued.
[[nodiscard]] unsigned PruneStaleKey(redisContext* context, const std::string& child_key,
                                     ExpectedKind expected);

/// Returns 1 when the first element of the list at key is no reference record, else 0, also when
/// there is no such list. A list is taken to hold either only records or only plain values. A
/// marker with nothing behind it is a plain value.
[[nodiscard]] unsigned IsPlainList(redisContext* context, const std::string& key);

/// Queues the removal of every key that matches pattern, found with SCAN, so that a large store is
/// not blocked; then marks the pattern less its last two characters in PrunedPrefixes. Fails,
/// without the mark, when an answer is missing or malformed or a removal cannot be queued.
[[nodiscard]] unsigned UnlinkMatchingKeys(redisContext* context, const std::string& pattern);

/// Queues the removal of every field of the hash at key whose name matches pattern, found with
/// HSCAN. Fails when an answer is missing or malformed or a removal cannot be queued.
[[nodiscard]] unsigned RemoveMatchingFields(redisContext* context, const std::string& key,
                                            const std::string& pattern);

/// True when the part of pattern before any of its slashes is marked in PrunedPrefixes, to which
/// the parts that are looked up are added, unmarked. For the pattern of a key's subtree these parts
/// are the key's ancestors and the key itself.
[[nodiscard]] bool IsUnderPrunedPrefix(const std::string& pattern);

/// Queues one removal in RemovalBatch; the only way into it. value is the field or the list value;
/// RemoveKey does not use it. When BatchLimit removals were queued since the last time, flushes the
/// batch first; a failed flush gives 0, queues nothing and leaves the count, so that the next call
/// flushes again. A text too long for the standard library gives 0 and prints "Failed to push data:
/// %s.\n". Duplicates are kept.
[[nodiscard]] unsigned QueueRemoval(redisContext* context, const std::string& key,
                                    std::string_view value, RemovalKind kind);

}  // namespace ostrafel

#endif  // OSTRAFEL_STORE_PRUNING_H_
