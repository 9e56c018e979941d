// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Showing a place of a text: its line, and marks below it.
#ifndef OSTRAFEL_TEXT_SOURCE_TEXT_H_
#define OSTRAFEL_TEXT_SOURCE_TEXT_H_

#include <cstddef>
#include <optional>
#include <string>

#include "text/json_positions.h"

namespace ostrafel {

/// A line of a text, or that part of it around a place which is narrow enough.
struct Excerpt {
  std::string line;   ///< In UTF-8, without controls; "…" stands for what is left out.
  std::string marks;  ///< Blanks, "^" below the place and "~" below the rest of its token.
};

/// A text that is looked into. Cheap when the places come in the order of the text, however long
/// its lines are.
class SourceText {
 public:
  explicit SourceText(std::string text);

  /// The line of a place, at most so many columns of a terminal wide (20 at least). A tab is shown
  /// as a blank; controls and bytes that are no UTF-8 as "\xNN". Nothing when the text has no such
  /// line; a place beyond its end is shown at its end.
  [[nodiscard]] std::optional<Excerpt> Show(const Position& place, std::size_t columns);

 private:
  bool MoveTo(const Position& place);

  std::string text_;
  std::size_t start_;       // behind a byte-order mark
  std::size_t line_start_;  // of the line that at_ is in
  std::size_t offset_;      // of at_
  Position at_ = {1, 1};
};

}  // namespace ostrafel

#endif  // OSTRAFEL_TEXT_SOURCE_TEXT_H_
