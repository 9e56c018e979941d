// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/store_rules.h"

namespace ostrafel {

void CheckStoreRulesIn(const Survey& /*survey*/, const Subject& /*subject*/,
                       Findings* /*findings*/) {}

void CheckStoreRules(const Survey& /*survey*/, Findings* /*findings*/) {}

}  // namespace ostrafel
