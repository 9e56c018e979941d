// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_CHECK_KEY_TYPES_H_
#define OSTRAFEL_CHECK_KEY_TYPES_H_

#include "check/finding.h"
#include "check/survey.h"

namespace ostrafel {

/// Appends a finding for each key that both objects and arrays are written to: at the first value
/// that is of the other kind than the first one, which is related. Reads all documents again, but
/// only when the store refused something.
void CheckKeyTypes(const Survey& survey, Findings* findings);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_KEY_TYPES_H_
