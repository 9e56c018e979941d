// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What a value says of its key, and where its records lead to.
#ifndef OSTRAFEL_EXPORT_VALUE_FACTS_H_
#define OSTRAFEL_EXPORT_VALUE_FACTS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "layout/record_parts.h"
#include "memory/memory_server.h"
#include "store/server.h"

namespace ostrafel {

/// What a value says of its key.
struct ValueFacts {
  /// What it is, kNone when the key is gone; of what is not read, what it is taken to be.
  KeyType type = KeyType::kNone;
  /// A hash that a create stores at this key wherever it stands in a tree: it has the key in its
  /// "@odata.id", and another member that JSON can have.
  bool takes_own_key = false;
  bool includes_file = false;  ///< A hash with "&&File": as a root, it would include a file.
  std::uint64_t size = 0;      ///< In bytes, with the key's name.
  std::uint64_t records = 0;   ///< How many fields or elements it has.
  std::uint64_t content = 0;   ///< Its digest (DigestOf),
  std::uint64_t shape = 0;     ///< and one of where it leads to.
};

/// What a look at a value tells.
struct Look {
  using Readings = std::vector<RecordParts>;  ///< Of one record, the likeliest first.
  ValueFacts facts;
  std::vector<Readings>
      records;  ///< Of objects and arrays, in the order in which they are written.
};

/// A digest of all that the value holds. Two values with the same one may be taken for the same.
[[nodiscard]] std::uint64_t DigestOf(const Stored& value);

/// Looks at what key holds.
[[nodiscard]] Look LookAt(const std::string& key, const Stored& value);

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_VALUE_FACTS_H_
