// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/list_alignment.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>

namespace ostrafel {

namespace {

// Elements as numbers, which are the same where the elements are equal: numbers are compared often.
struct NumberedLists {
  std::vector<std::size_t> stored;
  std::vector<std::size_t> wanted;

  [[nodiscard]] bool AreEqual(const Element& at) const {
    return stored[at.stored_index] == wanted[at.wanted_index];
  }
};

NumberedLists NumberElements(const List& stored, const List& wanted) {
  std::unordered_map<std::string_view, std::size_t> numbers;
  const auto number_all = [&](const List& list) {
    std::vector<std::size_t> numbered;
    numbered.reserve(list.size());
    for (const std::string& element : list) {
      numbered.push_back(numbers.emplace(element, numbers.size()).first->second);
    }
    return numbered;
  };
  return {number_all(stored), number_all(wanted)};
}

// Parts of both lists, side by side.
struct Part {
  Element begin;
  Element end;

  [[nodiscard]] bool Has(const Element& at) const {
    return at.stored_index < end.stored_index && at.wanted_index < end.wanted_index;
  }
};

// All but what the lists have in common at both ends.
Part MiddleOf(const NumberedLists& lists) {
  Part part = {{0, 0}, {lists.stored.size(), lists.wanted.size()}};
  while (part.Has(part.begin) && lists.AreEqual(part.begin)) {
    ++part.begin.stored_index;
    ++part.begin.wanted_index;
  }
  while (part.Has(part.begin) &&
         lists.AreEqual({part.end.stored_index - 1, part.end.wanted_index - 1})) {
    --part.end.stored_index;
    --part.end.wanted_index;
  }
  return part;
}

// A search for what both parts have in common: Myers's greedy algorithm ("An O(ND) Difference
// Algorithm and Its Variations", 1986). A way through both parts passes elements that are in common
// and makes edits between them: it leaves out an extra element or puts in a missing one. Of all
// ways with so many edits, of which so many leave out, the one that gets furthest is followed.
class WaySearch {
 public:
  WaySearch(const NumberedLists& lists, const Part& part) : lists_(lists), part_(part) {}

  // Searches the shortest way to the end or, when it takes more than kMostEdits, one that gets
  // furthest with these. Appends the elements in common on the way; returns where it leads to,
  // which is behind the start.
  Element Run(std::vector<Element>* common);

 private:
  [[nodiscard]] bool IsEnd(const Element& at) const {
    return at.stored_index == part_.end.stored_index && at.wanted_index == part_.end.wanted_index;
  }
  [[nodiscard]] Element PlaceOf(std::size_t edits, std::size_t extra,
                                std::size_t stored_index) const;
  [[nodiscard]] Element AfterEdit(std::size_t edits, std::size_t extra) const;
  [[nodiscard]] Element Reached(std::size_t edits, std::size_t extra) const;
  [[nodiscard]] Element PassCommon(Element at) const;
  [[nodiscard]] std::size_t FurthestAfter(std::size_t edits) const;
  void TraceBack(std::size_t edits, std::size_t extra, std::vector<Element>* common) const;

  const NumberedLists& lists_;
  const Part part_;
  // [edits][extra]: the place in the stored list that so many edits lead to, of which so many leave
  // out.
  std::vector<std::vector<std::size_t>> reached_;
};

// The place in both lists that goes with one in the stored list.
Element WaySearch::PlaceOf(std::size_t edits, std::size_t extra, std::size_t stored_index) const {
  const std::size_t missing = edits - extra;
  const std::size_t common = stored_index - part_.begin.stored_index - extra;
  return {stored_index, part_.begin.wanted_index + common + missing};
}

// Where the last edit leads to.
Element WaySearch::AfterEdit(std::size_t edits, std::size_t extra) const {
  if (edits == 0) return part_.begin;
  const std::vector<std::size_t>& before = reached_[edits - 1];
  const std::size_t put_in = extra < edits ? before[extra] : 0;
  const std::size_t left_out = extra > 0 ? before[extra - 1] + 1 : 0;
  return PlaceOf(edits, extra, std::max(put_in, left_out));
}

Element WaySearch::Reached(std::size_t edits, std::size_t extra) const {
  return PlaceOf(edits, extra, reached_[edits][extra]);
}

Element WaySearch::PassCommon(Element at) const {
  while (part_.Has(at) && lists_.AreEqual(at)) {
    ++at.stored_index;
    ++at.wanted_index;
  }
  return at;
}

// Of the ways with so many edits the one that gets furthest, of several that which stays closest to
// both lists: how many of its edits leave out. Ways past the end of one list do not count. There
// always is another: the last way that comes to that end inside of the other list can go on along
// it.
std::size_t WaySearch::FurthestAfter(std::size_t edits) const {
  std::size_t best = 0;
  std::size_t most = 0;
  const auto distance = [&](std::size_t extra) {
    return std::max(extra, edits - extra) - std::min(extra, edits - extra);
  };
  for (std::size_t extra = 0; extra <= edits; ++extra) {
    const Element at = Reached(edits, extra);
    if (at.stored_index > part_.end.stored_index || at.wanted_index > part_.end.wanted_index) {
      continue;
    }
    const std::size_t passed = at.stored_index + at.wanted_index;
    if (passed < most || (passed == most && distance(extra) >= distance(best))) continue;
    most = passed;
    best = extra;
  }
  return best;
}

void WaySearch::TraceBack(std::size_t edits, std::size_t extra,
                          std::vector<Element>* common) const {
  const std::size_t count = common->size();
  for (;;) {
    Element at = Reached(edits, extra);
    const Element start = AfterEdit(edits, extra);
    while (at.stored_index > start.stored_index) {
      --at.stored_index;
      --at.wanted_index;
      common->push_back(at);
    }
    if (edits == 0) break;
    --edits;
    if (extra > 0 && reached_[edits][extra - 1] + 1 == start.stored_index) --extra;
  }
  std::reverse(common->begin() + static_cast<std::ptrdiff_t>(count), common->end());
}

Element WaySearch::Run(std::vector<Element>* common) {
  for (std::size_t edits = 0; edits <= kMostEdits; ++edits) {
    reached_.emplace_back();
    for (std::size_t extra = 0; extra <= edits; ++extra) {
      const Element at = PassCommon(AfterEdit(edits, extra));
      reached_.back().push_back(at.stored_index);
      if (!IsEnd(at)) continue;
      TraceBack(edits, extra, common);
      return at;
    }
  }
  const std::size_t extra = FurthestAfter(kMostEdits);
  TraceBack(kMostEdits, extra, common);
  return Reached(kMostEdits, extra);
}

// Tells what stands between at and an element in common. Of elements side by side, some may be
// equal where the way was not the shortest.
void AppendGap(const NumberedLists& lists, Element at, const Element& next,
               std::vector<ListEdit>* edits) {
  for (; at.stored_index < next.stored_index && at.wanted_index < next.wanted_index;
       ++at.stored_index, ++at.wanted_index) {
    if (!lists.AreEqual(at)) edits->push_back({Change::kChanged, at});
  }
  for (; at.stored_index < next.stored_index; ++at.stored_index) {
    edits->push_back({Change::kExtra, at});
  }
  for (; at.wanted_index < next.wanted_index; ++at.wanted_index) {
    edits->push_back({Change::kMissing, at});
  }
}

}  // namespace

std::vector<ListEdit> AlignLists(const List& stored, const List& wanted) {
  const NumberedLists lists = NumberElements(stored, wanted);
  const Part middle = MiddleOf(lists);
  std::vector<Element> common;
  for (Part rest = middle; rest.begin.stored_index != rest.end.stored_index ||
                           rest.begin.wanted_index != rest.end.wanted_index;) {
    rest.begin = WaySearch(lists, rest).Run(&common);
  }
  common.push_back(middle.end);
  std::vector<ListEdit> edits;
  Element at = middle.begin;
  for (const Element& next : common) {
    AppendGap(lists, at, next, &edits);
    at = {next.stored_index + 1, next.wanted_index + 1};
  }
  return edits;
}

}  // namespace ostrafel
