// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The rules of the family "link-".
#ifndef OSTRAFEL_CHECK_LINK_RULES_H_
#define OSTRAFEL_CHECK_LINK_RULES_H_

#include "check/finding.h"
#include "check/survey.h"

namespace ostrafel {

/// Appends what the rules of the family find in one document.
void CheckLinkRulesIn(const Survey& survey, const Subject& subject, Findings* findings);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_LINK_RULES_H_
