// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Reading stored scalars: the way back from what value_rendering.h makes.
#ifndef OSTRAFEL_LAYOUT_VALUE_READING_H_
#define OSTRAFEL_LAYOUT_VALUE_READING_H_

#include <optional>
#include <string>
#include <string_view>

namespace ostrafel {

enum class ScalarKind {
  kString,
  kLiteral,  ///< A number, true, false or null.
  kUnknown,  ///< Nothing that RenderValue makes.
};

/// What a stored scalar stands for.
struct Scalar {
  ScalarKind kind;
  /// Of a string its content; of a literal what a JSON text has for it; else the stored text.
  std::string text;
};

/// Reads a stored scalar. RenderValue makes the same of what it stands for, unless a string holds a
/// NUL or is no UTF-8, which JSON texts cannot have.
[[nodiscard]] Scalar ReadScalar(std::string_view stored);

/// Takes the backslashes away that EscapeText puts in. Nothing for what it cannot have made.
[[nodiscard]] std::optional<std::string> UnescapeText(std::string_view text);

/// True for the text of an integer that RenderValue may have clamped: it is the largest or the
/// smallest one.
[[nodiscard]] bool IsBound(std::string_view stored);

/// The JSON text of a number that is stored in a way in which RenderValue writes none, for example
/// "1e3" or "3000000000", if jansson takes it.
[[nodiscard]] std::optional<std::string> ReadForeignNumber(std::string_view stored);

}  // namespace ostrafel

#endif  // OSTRAFEL_LAYOUT_VALUE_READING_H_
