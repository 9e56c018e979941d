// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// All rules on a whole tree.
#ifndef OSTRAFEL_CHECK_CHECK_H_
#define OSTRAFEL_CHECK_CHECK_H_

#include <vector>

#include "check/finding.h"
#include "check/survey.h"
#include "tool/progress.h"

namespace ostrafel {

/// What all rules find in the tree, without positions. Tells how many files it has looked at.
[[nodiscard]] Findings CheckTree(
    const Survey& survey, const TakeProgress& tell = [](std::size_t, std::size_t) {});

/// Reads the texts once more to find where the findings, and what is related to them, stand; then
/// sorts them by path, line, column and rule. What is no longer there keeps {0, 0}.
void LocateFindings(Findings* findings);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_CHECK_H_
