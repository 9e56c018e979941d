// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DIFF_LIST_ALIGNMENT_H_
#define OSTRAFEL_DIFF_LIST_ALIGNMENT_H_

#include <cstddef>
#include <vector>

#include "diff/difference.h"
#include "memory/memory_server.h"

namespace ostrafel {

struct ListEdit {
  Change change;
  Element element;
};

/// What is missing from, extra in and changed in stored so that it becomes wanted, in the order of
/// the lists. As many elements as can be are in common; between two of these, missing ones beside
/// extra ones are told as changed. Where more than kMostEdits elements are missing or extra, a
/// changed one being both, there may be more in common.
[[nodiscard]] std::vector<ListEdit> AlignLists(const List& stored, const List& wanted);

/// An alignment takes memory for the square of this and, at worst, a time that grows with the
/// lists' length times this.
inline constexpr std::size_t kMostEdits = 250;

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_LIST_ALIGNMENT_H_
