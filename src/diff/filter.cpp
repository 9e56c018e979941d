// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/filter.h"

#include <algorithm>

#include "memory/glob.h"

namespace ostrafel {

void LeaveOut(const DiffOptions& options, Differences* differences) {
  const auto is_left_out = [&](const Difference& difference) {
    if (difference.change == Change::kExtra && !options.has_extra) return true;
    return std::any_of(options.ignored.begin(), options.ignored.end(), [&](const auto& pattern) {
      return MatchesGlob(pattern, difference.key) ||
             (difference.place && MatchesGlob(pattern, difference.place->pointer));
    });
  };
  differences->erase(std::remove_if(differences->begin(), differences->end(), is_left_out),
                     differences->end());
}

}  // namespace ostrafel
