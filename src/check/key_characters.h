// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Characters in keys and names that mislead the searches of an update.
#ifndef OSTRAFEL_CHECK_KEY_CHARACTERS_H_
#define OSTRAFEL_CHECK_KEY_CHARACTERS_H_

#include <vector>

#include "check/finding.h"
#include "check/survey.h"

namespace ostrafel {

/// Appends the keys with characters that have a meaning in patterns, each where it is claimed; not
/// those that have them from a claimed key above.
void CheckGlobsInKeys(const Survey& survey, Findings* findings);

/// Appends the names of members with such characters. is_stored is StoredNodes of the subject.
void CheckGlobsInNames(const Survey& survey, const Subject& subject,
                       const std::vector<bool>& is_stored, Findings* findings);

/// Appends the names that begin with another name of their object and a blank.
void CheckBlanksInNames(const Survey& survey, const Subject& subject,
                        const std::vector<bool>& is_stored, Findings* findings);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_KEY_CHARACTERS_H_
