// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_CHECK_STORED_NODES_H_
#define OSTRAFEL_CHECK_STORED_NODES_H_

#include <vector>

#include "check/survey.h"

namespace ostrafel {

/// IsStored of every node of the subject's outline, in one pass: whether what the node holds is
/// stored, as far as claims go. A scalar or a link is as the object or array that holds it.
[[nodiscard]] std::vector<bool> StoredNodes(const Survey& survey, const Subject& subject);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_STORED_NODES_H_
