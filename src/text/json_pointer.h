// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// JSON pointers (RFC 6901), and how URIs have them.
#ifndef OSTRAFEL_TEXT_JSON_POINTER_H_
#define OSTRAFEL_TEXT_JSON_POINTER_H_

#include <jansson.h>

#include <optional>
#include <string>
#include <string_view>

namespace ostrafel {

/// Appends "/" and name to a JSON pointer, "~" and "/" in name escaped.
void AppendStep(std::string_view name, std::string* pointer);

/// The pointer with name appended like that.
[[nodiscard]] std::string ChildPointer(std::string pointer, std::string_view name);

/// The name that a step of a pointer stands for, which is what comes after a "/" and before the
/// next. Nothing for a "~" without "0" or "1" and for a NUL, which no name holds.
[[nodiscard]] std::optional<std::string> NameOfStep(std::string_view step);

/// The value in root (borrowed) that a JSON pointer leads to: root itself for the empty
/// one. Null where it leads nowhere, and for what is no pointer.
[[nodiscard]] const json_t* ValueAt(const json_t* root, std::string_view pointer);

/// The text with each "%" and two hexadecimal digits replaced by the byte that they stand for.
/// Nothing when a "%" has no such digits.
[[nodiscard]] std::optional<std::string> DecodePercents(std::string_view text);

}  // namespace ostrafel

#endif  // OSTRAFEL_TEXT_JSON_POINTER_H_
