// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DIFF_COMPARISON_H_
#define OSTRAFEL_DIFF_COMPARISON_H_

#include "diff/difference.h"
#include "memory/memory_server.h"

namespace ostrafel {

/// All that differs, without places. A key that is missing, is extra or holds another type is one
/// difference; otherwise each field and each element is one. Two values of other types are equal.
[[nodiscard]] Differences CompareStores(const Server& stored, const Server& wanted);

/// "hash", "list" or "other".
[[nodiscard]] const char* NameOf(KeyType type);

/// The fields or elements of a value; 0 for other types.
[[nodiscard]] std::size_t CountRecords(const Stored& value);

/// Those of a key; 0 when the store does not have it.
[[nodiscard]] std::size_t CountRecords(const Server& store, const std::string& key);

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_COMPARISON_H_
