// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TREE_JSON_POINTER_H_
#define OSTRAFEL_TREE_JSON_POINTER_H_

#include <jansson.h>

#include <optional>
#include <string>
#include <string_view>

namespace ostrafel {

/// The value in root (borrowed) that a JSON pointer (RFC 6901) leads to: root itself for the empty
/// one. Null where it leads nowhere, and for what is no pointer.
[[nodiscard]] const json_t* ValueAt(const json_t* root, std::string_view pointer);

/// The text with each "%" and two hexadecimal digits replaced by the byte that they stand for.
/// Nothing when a "%" has no such digits.
[[nodiscard]] std::optional<std::string> DecodePercents(std::string_view text);

}  // namespace ostrafel

#endif  // OSTRAFEL_TREE_JSON_POINTER_H_
