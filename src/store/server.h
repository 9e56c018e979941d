// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The store that resources are written to, as far as writing needs one: five questions, three
// flushes and a deletion. A program links one of two: Redis (src/redis) or a store in memory that
// answers like Redis (src/memory).
//
// Unless it says otherwise, an operation returns 1 for success and 0 for failure. Patterns are
// Redis's globs (KEYS, SCAN MATCH).
#ifndef OSTRAFEL_STORE_SERVER_H_
#define OSTRAFEL_STORE_SERVER_H_

#include <functional>
#include <optional>
#include <string>

namespace ostrafel {

/// The store; what it consists of is the linked library's affair. Its owner is the driver.
struct Server;

// --- Questions, answered at once ---------------------------------------------------------------

/// What a key holds.
enum class KeyType { kNone, kHash, kList, kOther };

/// The type of key (TYPE). Nothing when the server does not answer with a status.
[[nodiscard]] std::optional<KeyType> AskType(Server* server, const std::string& key);

/// The first element of the list at key (LINDEX). Nothing when there is none, key holds another
/// type, or the server does not answer with a string.
[[nodiscard]] std::optional<std::string> AskFirstElement(Server* server, const std::string& key);

/// True when the hash at key has the field (HEXISTS). An error or a missing answer counts as no.
[[nodiscard]] bool AskFieldExists(Server* server, const std::string& key, const std::string& field);

/// Takes one name that was found. Returning 0 ends the search.
using TakeName = std::function<unsigned(const std::string& name)>;

/// Gives take every key that matches pattern (SCAN, so that a large store is not blocked), some
/// maybe more than once. Returns 0 when an answer is missing or malformed, or take returned 0.
[[nodiscard]] unsigned FindKeys(Server* server, const std::string& pattern, const TakeName& take);

/// Gives take every field of the hash at key whose name matches pattern (HSCAN); likewise. A key
/// that does not exist has no fields; one of another type is an error.
[[nodiscard]] unsigned FindFields(Server* server, const std::string& key,
                                  const std::string& pattern, const TakeName& take);

// --- Flushes, each of a batch of store_state.h, as one pipeline --------------------------------

/// What a flush says, once, when the server refuses anything of it.
inline constexpr const char* RemovalFlushFailed =
    "Some errors occur while removing data from database\n"
    "The data in database would be incorrect\n";
inline constexpr const char* HashFlushFailed =
    "Some errors occur while creating hash data into database\n"
    "The data in database would be incorrect\n";
inline constexpr const char* ListFlushFailed =
    "Some errors occur while creating list data into database\n"
    "The data in database would be incorrect\n";

/// Sends all of RemovalBatch: an "UNLINK key" for each key, in queue order; then for each list in
/// ascending byte order an "LREM key 0 value" (0: every equal element) for each value; then for
/// each hash in ascending byte order an "HDEL key field" for each field.
///
/// Returns 1 when every command was answered with an integer, 0 included (there was nothing to
/// remove), or nothing was pending. Else prints RemovalFlushFailed at the first bad answer, and
/// "Failed to get reply\n" for each that cannot be read; after the first failure the rest is read,
/// not checked. The batch is empty afterwards in either case; what was carried out stays so.
[[nodiscard]] unsigned FlushRemovalBatch(Server* server);

/// Sends all of HashBatch, likewise: one "HSET key field value" per field, keys and fields in
/// ascending byte order. Its message is HashFlushFailed.
[[nodiscard]] unsigned FlushHashBatch(Server* server);

/// Sends all of ListBatch, likewise: one "RPUSH key value" per value, keys in ascending byte order,
/// the values of a key in queue order. An answer below 1 is bad, because RPUSH answers with the
/// list's new length. Its message is ListFlushFailed.
[[nodiscard]] unsigned FlushListBatch(Server* server);

// --- Deletion, at once --------------------------------------------------------------------------

/// Deletes every key that matches pattern: asks for the keys (KEYS) and deletes them (a DEL for
/// each, as one pipeline). Returns 1 also when KEYS is refused, unanswered or malformed, which
/// deletes nothing; what DEL answers does not matter. Returns 0 when the answer to a DEL cannot be
/// read, after "Failed to get reply\n".
[[nodiscard]] unsigned DeleteMatchingKeys(Server* server, const std::string& pattern);

}  // namespace ostrafel

#endif  // OSTRAFEL_STORE_SERVER_H_
