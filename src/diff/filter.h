// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DIFF_FILTER_H_
#define OSTRAFEL_DIFF_FILTER_H_

#include "diff/difference.h"
#include "diff/options.h"

namespace ostrafel {

/// Takes away the differences that the options leave out: those whose key or pointer matches an
/// ignored pattern and, where extras do not count, what only the store has.
void LeaveOut(const DiffOptions& options, Differences* differences);

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_FILTER_H_
