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

/// The fewest elements that are missing from, extra in and changed in stored so that it becomes
/// wanted, in the order of the lists; missing ones beside extra ones are told as changed. Lists
/// that differ in more than kMostEdits elements are compared element by element between what they
/// have in common at both ends.
[[nodiscard]] std::vector<ListEdit> AlignLists(const List& stored, const List& wanted);

/// Time and memory of an alignment grow with the square of this.
inline constexpr std::size_t kMostEdits = 1000;

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_LIST_ALIGNMENT_H_
