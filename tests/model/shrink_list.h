// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_SHRINK_LIST_H_
#define OSTRAFEL_TESTS_MODEL_SHRINK_LIST_H_

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace model {

/// Drops items of a sequence (a vector, a text) as long as `accepts` takes what is left: first all
/// of them, then halves, quarters and so on down to single ones. Returns the last sequence that was
/// accepted, `items` itself when none was.
template <typename Items, typename Accepts>
Items ShrinkList(Items items, const Accepts& accepts) {
  for (std::size_t chunk = items.size(); chunk > 0; chunk /= 2) {
    std::size_t start = 0;
    while (start < items.size()) {
      const std::size_t end = std::min(start + chunk, items.size());
      Items fewer(items.begin(), std::next(items.begin(), static_cast<std::ptrdiff_t>(start)));
      fewer.insert(fewer.end(), std::next(items.begin(), static_cast<std::ptrdiff_t>(end)),
                   items.end());
      if (accepts(fewer)) {
        items = std::move(fewer);
      } else {
        start = end;
      }
    }
  }
  return items;
}

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_SHRINK_LIST_H_
