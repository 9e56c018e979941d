// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/list_alignment.h"

#include <algorithm>
#include <optional>

namespace ostrafel {

namespace {

// A part of both lists.
struct Part {
  const List& stored;
  const List& wanted;
  Element begin;
  Element end;

  [[nodiscard]] bool IsEqual(std::size_t x, std::size_t y) const {
    return stored[begin.stored_index + x] == wanted[begin.wanted_index + y];
  }
};

// What the lists have in common at both ends left out.
Part MiddleOf(const List& stored, const List& wanted) {
  Part part = {stored, wanted, {0, 0}, {stored.size(), wanted.size()}};
  Element& begin = part.begin;
  Element& end = part.end;
  while (begin.stored_index < end.stored_index && begin.wanted_index < end.wanted_index &&
         stored[begin.stored_index] == wanted[begin.wanted_index]) {
    ++begin.stored_index;
    ++begin.wanted_index;
  }
  while (begin.stored_index < end.stored_index && begin.wanted_index < end.wanted_index &&
         stored[end.stored_index - 1] == wanted[end.wanted_index - 1]) {
    --end.stored_index;
    --end.wanted_index;
  }
  return part;
}

// The elements that both parts have in common, in order: a longest common subsequence, found with
// Myers's greedy algorithm ("An O(ND) Difference Algorithm and Its Variations", 1986). Nothing when
// it takes more than kMostEdits elements that are missing or extra.
std::optional<std::vector<Element>> CommonElements(const Part& part) {
  const auto columns = static_cast<std::ptrdiff_t>(part.end.stored_index - part.begin.stored_index);
  const auto rows = static_cast<std::ptrdiff_t>(part.end.wanted_index - part.begin.wanted_index);
  const auto most = std::min(columns + rows, static_cast<std::ptrdiff_t>(kMostEdits));
  const auto middle = static_cast<std::size_t>(most) + 1;
  // For each diagonal (x - y) how far along the stored list the edits so far reach.
  std::vector<std::ptrdiff_t> reach(2 * middle + 1, 0);
  const auto at = [&](std::vector<std::ptrdiff_t> & values, std::ptrdiff_t diagonal) -> auto& {
    return values[static_cast<std::size_t>(diagonal + static_cast<std::ptrdiff_t>(middle))];
  };
  const auto comes_down = [&](std::vector<std::ptrdiff_t>& values, std::ptrdiff_t diagonal,
                              std::ptrdiff_t edits) {
    return diagonal == -edits ||
           (diagonal != edits && at(values, diagonal - 1) < at(values, diagonal + 1));
  };
  std::vector<std::vector<std::ptrdiff_t>> history;  // reach before each number of edits
  for (std::ptrdiff_t edits = 0; edits <= most; ++edits) {
    history.push_back(reach);
    for (std::ptrdiff_t diagonal = -edits; diagonal <= edits; diagonal += 2) {
      std::ptrdiff_t x = comes_down(reach, diagonal, edits) ? at(reach, diagonal + 1)
                                                            : at(reach, diagonal - 1) + 1;
      std::ptrdiff_t y = x - diagonal;
      while (x < columns && y < rows && y >= 0 &&
             part.IsEqual(static_cast<std::size_t>(x), static_cast<std::size_t>(y))) {
        ++x;
        ++y;
      }
      at(reach, diagonal) = x;
      if (x < columns || y < rows) continue;
      // Back to the start: each diagonal step is an element in common.
      std::vector<Element> common;
      for (; edits >= 0; --edits) {
        std::vector<std::ptrdiff_t>& before = history[static_cast<std::size_t>(edits)];
        diagonal = x - y;
        const bool is_down = comes_down(before, diagonal, edits);
        const std::ptrdiff_t previous = is_down ? diagonal + 1 : diagonal - 1;
        const std::ptrdiff_t from_x = edits == 0 ? 0 : at(before, previous);
        const std::ptrdiff_t from_y = edits == 0 ? 0 : from_x - previous;
        while (x > from_x && y > from_y) {
          --x;
          --y;
          common.push_back({part.begin.stored_index + static_cast<std::size_t>(x),
                            part.begin.wanted_index + static_cast<std::size_t>(y)});
        }
        x = from_x;
        y = from_y;
      }
      std::reverse(common.begin(), common.end());
      return common;
    }
  }
  return std::nullopt;
}

// Tells what stands between at and an element in common.
void AppendGap(Element at, const Element& next, std::vector<ListEdit>* edits) {
  for (; at.stored_index < next.stored_index && at.wanted_index < next.wanted_index;
       ++at.stored_index, ++at.wanted_index) {
    edits->push_back({Change::kChanged, at});
  }
  for (; at.stored_index < next.stored_index; ++at.stored_index) {
    edits->push_back({Change::kExtra, at});
  }
  for (; at.wanted_index < next.wanted_index; ++at.wanted_index) {
    edits->push_back({Change::kMissing, at});
  }
}

// Element by element: those that are equal in their places are in common.
std::vector<Element> EqualPlaces(const Part& part) {
  std::vector<Element> common;
  for (Element at = part.begin;
       at.stored_index < part.end.stored_index && at.wanted_index < part.end.wanted_index;
       ++at.stored_index, ++at.wanted_index) {
    if (part.stored[at.stored_index] == part.wanted[at.wanted_index]) common.push_back(at);
  }
  return common;
}

}  // namespace

std::vector<ListEdit> AlignLists(const List& stored, const List& wanted) {
  const Part part = MiddleOf(stored, wanted);
  std::vector<Element> common = CommonElements(part).value_or(std::vector<Element>());
  if (common.empty()) common = EqualPlaces(part);
  common.push_back(part.end);
  std::vector<ListEdit> edits;
  Element at = part.begin;
  for (const Element& next : common) {
    AppendGap(at, next, &edits);
    at = {next.stored_index + 1, next.wanted_index + 1};
  }
  return edits;
}

}  // namespace ostrafel
