// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The stored form of a scalar JSON value.
#ifndef OSTRAFEL_LAYOUT_VALUE_RENDERING_H_
#define OSTRAFEL_LAYOUT_VALUE_RENDERING_H_

#include <jansson.h>

#include <string>

namespace ostrafel {

/// Renders a scalar as it is stored:
///   string   in double quotes, a backslash before every backslash and double quote, nothing else
///            escaped
///   integer  clamped to 32 bits (readers hold it in 32 bits), in decimal
///   real     as printf's "%f", less its trailing zeros; the point stays: 5.0 is "5."
///   true, false, null  the word
/// Returns the empty string for a null handle, an object or an array; no scalar's is empty. The
/// value is borrowed.
[[nodiscard]] std::string RenderValue(const json_t* value);

/// Puts a backslash before every backslash and double quote of the string, in place.
void EscapeText(std::string& text);

/// Replaces every occurrence of from by to, in place, from left to right. What was put in
/// is not searched again. from must not be empty.
void ReplaceAll(std::string& text, const std::string& from, const std::string& to);

}  // namespace ostrafel

#endif  // OSTRAFEL_LAYOUT_VALUE_RENDERING_H_
