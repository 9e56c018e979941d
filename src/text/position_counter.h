// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// From the offset of a byte to line and column.
#ifndef OSTRAFEL_TEXT_POSITION_COUNTER_H_
#define OSTRAFEL_TEXT_POSITION_COUNTER_H_

#include <cstddef>
#include <string_view>

#include "text/json_positions.h"

namespace ostrafel {

/// Counts lines and columns once from the start of a text to its end, however many positions are
/// asked for.
class PositionCounter {
 public:
  /// The text outlives the counter, and begins with no byte-order mark.
  explicit PositionCounter(std::string_view text) : text_(text) {}

  /// The position of the byte at offset, which is none before that of the last call and at most
  /// the text's size.
  [[nodiscard]] Position At(std::size_t offset);

 private:
  std::string_view text_;
  std::size_t offset_ = 0;
  Position position_ = {1, 1};
};

/// True for all bytes of a character in UTF-8 but the first.
[[nodiscard]] inline bool ContinuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// The text less a byte-order mark at its start.
[[nodiscard]] std::string_view WithoutByteOrderMark(std::string_view text);

}  // namespace ostrafel

#endif  // OSTRAFEL_TEXT_POSITION_COUNTER_H_
