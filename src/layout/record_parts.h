// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Reading records: the way back from what layout.h makes.
#ifndef OSTRAFEL_LAYOUT_RECORD_PARTS_H_
#define OSTRAFEL_LAYOUT_RECORD_PARTS_H_

#include <string>
#include <string_view>

namespace ostrafel {

/// The name of the member that a field of the hash at key is recorded for: the field itself, or the
/// name in a reference record. Where blanks allow several readings, the one whose target is the
/// derived key of its name; else the first whose target begins like a key, with "/" or "&&"; else
/// the one whose target has no blank.
[[nodiscard]] std::string MemberOfField(const std::string& key, std::string_view field);

/// True when key begins like a derived key.
[[nodiscard]] bool IsDerivedKey(std::string_view key);

}  // namespace ostrafel

#endif  // OSTRAFEL_LAYOUT_RECORD_PARTS_H_
