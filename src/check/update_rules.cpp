// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/update_rules.h"

namespace ostrafel {

void CheckUpdateRulesIn(const Survey& /*survey*/, const Subject& /*subject*/,
                        Findings* /*findings*/) {}

void CheckUpdateRules(const Survey& /*survey*/, Findings* /*findings*/) {}

}  // namespace ostrafel
