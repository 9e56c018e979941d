// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/position_counter.h"

namespace ostrafel {

Position PositionCounter::At(std::size_t offset) {
  for (; offset_ < offset; ++offset_) {
    if (text_[offset_] == '\n') {
      position_ = {position_.line + 1, 1};
    } else if (!ContinuesCharacter(text_[offset_])) {
      ++position_.column;
    }
  }
  return position_;
}

std::string_view WithoutByteOrderMark(std::string_view text) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (text.substr(0, mark.size()) == mark) text.remove_prefix(mark.size());
  return text;
}

}  // namespace ostrafel
