// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What keeps whole files from being loaded.
#ifndef OSTRAFEL_CHECK_LOAD_FILES_H_
#define OSTRAFEL_CHECK_LOAD_FILES_H_

#include "check/finding.h"
#include "check/survey.h"

namespace ostrafel {

/// Appends what is wrong with the listing: paths that cannot be looked at, folders that cannot be
/// read, no file at all.
void CheckListing(const Survey& survey, Findings* findings);

/// Appends why files that the load takes cannot be loaded, included files among them. An included
/// file is told once; those that include it are related.
void CheckFiles(const Survey& survey, Findings* findings);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_LOAD_FILES_H_
