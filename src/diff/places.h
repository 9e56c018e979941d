// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DIFF_PLACES_H_
#define OSTRAFEL_DIFF_PLACES_H_

#include "diff/difference.h"
#include "play/play.h"

namespace ostrafel {

/// Finds where in the tree the differences come from (Difference::place). Reads the files of the
/// listing again: their documents take more memory than what a play makes of them. Prints nothing.
void FindPlaces(const Listing& listing, Differences* differences);

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_PLACES_H_
