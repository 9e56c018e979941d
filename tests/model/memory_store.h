// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_MEMORY_STORE_H_
#define OSTRAFEL_TESTS_MODEL_MEMORY_STORE_H_

#include <map>
#include <string>
#include <variant>
#include <vector>

#include "model/reply.h"

namespace model {

/// A Redis hash: field -> value.
using Hash = std::map<std::string, std::string>;

/// A Redis list, first element first.
using List = std::vector<std::string>;

/// What one key holds. The plain string is there so that a test can put a value of a type that
/// Ostrafel never writes in its way.
struct StoredValue {
  std::variant<Hash, List, std::string> value;
};

/// True when both hold the same type and the same contents.
bool operator==(const StoredValue& left, const StoredValue& right);

/// A whole Redis database.
using Store = std::map<std::string, StoredValue>;

/// Carries out one command on the store as a Redis 7 server would, and returns its reply. Knows
/// KEYS, DEL, UNLINK, TYPE, LINDEX, SCAN and HSCAN (with MATCH and COUNT), HEXISTS, LREM, HDEL,
/// HSET and RPUSH, in the forms that Ostrafel sends: one key, field or value a command, LREM with
/// count 0, LINDEX with index 0. Names are taken in any case. A hash or list that becomes empty
/// loses its key. SCAN and HSCAN answer everything at once, in ascending order, with cursor 0.
///
/// Throws std::invalid_argument for any other command: a caller that sends one is wrong.
Reply Execute(Store& store, const Command& command);

/// The store as text, one line per field, element or plain string, keys in ascending order:
/// "hash | key | field | value", "list | key | value", "string | key | value".
std::string Dump(const Store& store);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_MEMORY_STORE_H_
