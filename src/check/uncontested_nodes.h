// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_CHECK_UNCONTESTED_NODES_H_
#define OSTRAFEL_CHECK_UNCONTESTED_NODES_H_

#include <vector>

#include "check/survey.h"

namespace ostrafel {

/// For each node of the subject's outline, in one pass, whether what it holds is stored as far as
/// claims go. A scalar or a link is as the object or array that holds it. What the writer cannot
/// write is not looked at: StoredNodes does that.
[[nodiscard]] std::vector<bool> UncontestedNodes(const Survey& survey, const Subject& subject);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_UNCONTESTED_NODES_H_
