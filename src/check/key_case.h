// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_CHECK_KEY_CASE_H_
#define OSTRAFEL_CHECK_KEY_CASE_H_

#include "check/finding.h"
#include "check/survey.h"

namespace ostrafel {

/// Appends the stored keys that differ from one that is written earlier in the case of letters of
/// ASCII only; not those that do so because of keys above them.
void CheckKeyCase(const Survey& survey, Findings* findings);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_KEY_CASE_H_
