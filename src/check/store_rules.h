// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The rules of the family "store-".
#ifndef OSTRAFEL_CHECK_STORE_RULES_H_
#define OSTRAFEL_CHECK_STORE_RULES_H_

#include "check/finding.h"
#include "check/survey.h"

namespace ostrafel {

/// Appends what the rules of the family find in one document.
void CheckStoreRulesIn(const Survey& survey, const Subject& subject, Findings* findings);

/// Appends what they find in the tree as a whole.
void CheckStoreRules(const Survey& survey, Findings* findings);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_STORE_RULES_H_
