// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Characters of texts that may hold bytes that are no UTF-8, as the names of files do.
#ifndef OSTRAFEL_TEXT_UTF8_H_
#define OSTRAFEL_TEXT_UTF8_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ostrafel {

struct Character {
  std::size_t size;  ///< In bytes, 1 to 4.
  char32_t code;     ///< The code point; of a byte that is no UTF-8, that byte.
  bool is_valid;     ///< False for a byte that is no UTF-8, which is a character by itself.
};

/// The first character of text, which must not be empty.
[[nodiscard]] Character FirstCharacter(std::string_view text);

/// True when a JSON text can hold the string, as jansson has it: it is UTF-8 and has no NUL.
[[nodiscard]] bool IsText(std::string_view text);

/// True when a terminal or an editor might act on the character instead of showing it: controls,
/// line ends of all kinds, and what turns the direction of writing.
[[nodiscard]] bool IsControl(const Character& character);

/// The columns that a terminal shows the character in: 0 for one that is combined with that before
/// it, 2 for a wide one of East Asia, else 1.
[[nodiscard]] std::size_t ColumnsOf(char32_t code);

/// "\xNN" for each of the bytes.
[[nodiscard]] std::string EscapeBytes(std::string_view bytes);

/// The byte that two hexadecimal digits stand for; nothing for any other text.
[[nodiscard]] std::optional<char> ByteOf(std::string_view digits);

/// The text on one line and in UTF-8, controls and what is no UTF-8 as "\xNN".
[[nodiscard]] std::string Printable(std::string_view text);

}  // namespace ostrafel

#endif  // OSTRAFEL_TEXT_UTF8_H_
