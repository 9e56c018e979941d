// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A resource as a JSON document.
#ifndef OSTRAFEL_EXPORT_DOCUMENT_H_
#define OSTRAFEL_EXPORT_DOCUMENT_H_

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "export/loss.h"
#include "export/store_keys.h"
#include "memory/memory_server.h"

namespace ostrafel {

/// jansson reads no value that is deeper, the root being at level 1 (JSON_PARSER_MAX_DEPTH).
inline constexpr std::size_t kMostLevels = 2048;

/// What the keys of a document hold.
using Contents = std::unordered_map<const KeyEntry*, Stored>;

/// So many blanks stand before a line for each level that it is below the root's.
inline constexpr std::size_t kIndent = 4;

/// The members that the root of a document has.
enum class RootForm {
  kAsStored,
  kWithItsKey,        ///< Its key as "@odata.id", whatever the resource has there.
  kWithoutInclusion,  ///< All but "&&File".
};

/// Keys that a document has.
using WrittenKeys = std::unordered_set<const KeyEntry*>;

/// A document that was made.
struct DocumentText {
  std::string text;
  Losses losses;     ///< What a create of it would not make as it is stored.
  WrittenKeys keys;  ///< What is written in it, the root among them.
  /// The root takes its own key (ValueFacts), and still does so in this document.
  bool tells_key = false;
};

/// The JSON text of the resource with its parts and with what stands in it, indented and ended by a
/// line end. contents has the keys that the plan has for the document.
///
/// What stands in the document more than once is whole where it stands first; where it stands again
/// an object of a key of its own has only one member beside the key, and a part is empty: a load
/// takes them from the first place.
[[nodiscard]] DocumentText WriteDocument(const KeyEntry& root, RootForm form, const StoreKeys& keys,
                                         const Contents& contents);

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_DOCUMENT_H_
