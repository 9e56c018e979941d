// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/source_text.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "text/position_counter.h"
#include "text/utf8.h"

namespace ostrafel {

namespace {

constexpr std::string_view kEllipsis = "…";

// A character of a line.
struct Cell {
  Character character;
  std::string_view bytes;
  std::size_t columns;  // as it is shown
};

// Some characters of a line, in order.
struct Cells {
  std::vector<Cell> cells;
  std::size_t columns = 0;  // of all
  bool is_cut = false;      // The line goes on.
};

bool IsEscaped(const Character& character) {
  return !character.is_valid || (IsControl(character) && character.code != '\t');
}

Cell CellOf(const Character& character, std::string_view bytes) {
  if (IsEscaped(character)) return {character, bytes, EscapeBytes(bytes).size()};
  return {character, bytes, ColumnsOf(character.code)};
}

// The last character of text, which must not be empty.
Character LastCharacter(std::string_view text) {
  for (std::size_t size = 1; size <= std::min<std::size_t>(4, text.size()); ++size) {
    const Character character = FirstCharacter(text.substr(text.size() - size));
    if (character.is_valid && character.size == size) return character;
  }
  return FirstCharacter(text.substr(text.size() - 1));
}

bool IsLineEnd(std::string_view rest) {
  return rest.empty() || rest.front() == '\n' || rest == "\r" || rest.substr(0, 2) == "\r\n";
}

// Characters that are combined have no columns: their number is limited as well.
bool IsFull(const Cells& cells, std::size_t columns) {
  return cells.columns > columns || cells.cells.size() > 4 * columns;
}

// What the line holds from the start of rest on, somewhat more than that many columns of it.
Cells CellsAfter(std::string_view rest, std::size_t columns) {
  Cells result;
  result.cells.reserve(columns);
  while (!IsLineEnd(rest)) {
    result.is_cut = IsFull(result, columns);
    if (result.is_cut) break;
    const Character character = FirstCharacter(rest);
    result.cells.push_back(CellOf(character, rest.substr(0, character.size)));
    result.columns += result.cells.back().columns;
    rest.remove_prefix(character.size);
  }
  return result;
}

// What the line holds up to the end of text.
Cells CellsBefore(std::string_view text, std::size_t columns) {
  Cells result;
  result.cells.reserve(columns);
  while (!text.empty()) {
    result.is_cut = IsFull(result, columns);
    if (result.is_cut) break;
    const Character character = LastCharacter(text);
    result.cells.push_back(CellOf(character, text.substr(text.size() - character.size)));
    result.columns += result.cells.back().columns;
    text.remove_suffix(character.size);
  }
  std::reverse(result.cells.begin(), result.cells.end());
  return result;
}

// Takes cells away from the front until no more than so many columns are left.
void CutFront(Cells* cells, std::size_t columns) {
  std::size_t cut = 0;
  while (cells->columns > columns) cells->columns -= cells->cells[cut++].columns;
  if (cut == 0) return;
  cells->is_cut = true;
  // Nothing is left that these could be combined with.
  while (cut < cells->cells.size() && cells->cells[cut].columns == 0) ++cut;
  cells->cells.erase(cells->cells.begin(), cells->cells.begin() + static_cast<std::ptrdiff_t>(cut));
}

void CutBack(Cells* cells, std::size_t columns) {
  while (cells->columns > columns) {
    cells->columns -= cells->cells.back().columns;
    cells->cells.pop_back();
    cells->is_cut = true;
  }
}

// Leaves so much of both that they fit, with the ellipses that stand for the rest.
void CutBoth(Cells* before, Cells* after, std::size_t columns) {
  const std::size_t needed = std::max<std::size_t>(after->columns, 1);
  if (!before->is_cut && !after->is_cut && before->columns + needed <= columns) return;
  const std::size_t room = columns - 2;
  CutFront(before, room - std::min(needed, room / 2));
  const std::size_t left = columns - before->columns - (before->is_cut ? 1 : 0);
  if (after->is_cut || needed > left) CutBack(after, left - 1);
}

bool IsWordCharacter(const Character& character) {
  const char32_t code = character.code;
  constexpr std::string_view others = "+-._";
  const char32_t lower = code | 0x20U;
  return (code >= '0' && code <= '9') || (lower >= 'a' && lower <= 'z') ||
         (code != 0 && code < 0x80 &&
          others.find(static_cast<char>(code)) != std::string_view::npos);
}

// The columns of the token that begins with the first of the cells: a string, a number, a word or
// a single character.
std::size_t TokenColumns(const std::vector<Cell>& cells) {
  if (cells.empty()) return 1;
  std::size_t columns = cells.front().columns;
  const bool is_string = cells.front().character.code == '"';
  if (!is_string && !IsWordCharacter(cells.front().character)) return columns;
  bool is_escaped = false;
  for (std::size_t i = 1; i < cells.size(); ++i) {
    const char32_t code = cells[i].character.code;
    if (!is_string && !IsWordCharacter(cells[i].character)) break;
    columns += cells[i].columns;
    if (is_string && code == '"' && !is_escaped) break;
    is_escaped = code == '\\' && !is_escaped;
  }
  return columns;
}

std::string TextOf(const Cells& cells) {
  std::string text;
  for (const Cell& cell : cells.cells) {
    if (cell.character.code == '\t') {
      text += ' ';
    } else if (IsEscaped(cell.character)) {
      text += EscapeBytes(cell.bytes);
    } else {
      text += cell.bytes;
    }
  }
  return text;
}

}  // namespace

SourceText::SourceText(std::string text)
    : text_(std::move(text)),
      start_(text_.size() - WithoutByteOrderMark(text_).size()),
      line_start_(start_),
      offset_(start_) {}

// Goes on from where it is, or from the start when the place is before that. False when there is
// no such line.
bool SourceText::MoveTo(const Position& place) {
  if (place.line < at_.line || (place.line == at_.line && place.column < at_.column)) {
    at_ = {1, 1};
    line_start_ = offset_ = start_;
  }
  while (at_.line < place.line) {
    const std::size_t end = text_.find('\n', offset_);
    if (end == std::string::npos) return false;
    line_start_ = offset_ = end + 1;
    at_ = {at_.line + 1, 1};
  }
  const std::string_view text = text_;
  while (at_.column < place.column && !IsLineEnd(text.substr(offset_))) {
    offset_ += FirstCharacter(text.substr(offset_)).size;
    ++at_.column;
  }
  return true;
}

std::optional<Excerpt> SourceText::Show(const Position& place, std::size_t columns) {
  if (place.line == 0 || !MoveTo(place)) return std::nullopt;
  const std::string_view text = text_;
  Cells before = CellsBefore(text.substr(line_start_, offset_ - line_start_), columns);
  Cells after = CellsAfter(text.substr(offset_), columns);
  CutBoth(&before, &after, columns);

  const std::string front(before.is_cut ? kEllipsis : "");
  const std::string back(after.is_cut ? kEllipsis : "");
  std::string marks(before.columns + (before.is_cut ? 1 : 0), ' ');
  marks += '^';
  const std::size_t token = TokenColumns(after.cells);
  if (token > 1) marks.append(token - 1, '~');
  return Excerpt{front + TextOf(before) + TextOf(after) + back, std::move(marks)};
}

}  // namespace ostrafel
