// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/key_rules.h"

namespace ostrafel {

void CheckKeyRulesIn(const Survey& /*survey*/, const Subject& /*subject*/, Findings* /*findings*/) {
}

void CheckKeyRules(const Survey& /*survey*/, Findings* /*findings*/) {}

}  // namespace ostrafel
