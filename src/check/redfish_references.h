// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Of the family "redfish-" the rules that need all files: who refers to whom.
#ifndef OSTRAFEL_CHECK_REDFISH_REFERENCES_H_
#define OSTRAFEL_CHECK_REDFISH_REFERENCES_H_

#include "check/finding.h"
#include "check/survey.h"

namespace ostrafel {

/// Appends what redfish-not-member and redfish-orphan find.
void CheckReferences(const Survey& survey, Findings* findings);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_REDFISH_REFERENCES_H_
