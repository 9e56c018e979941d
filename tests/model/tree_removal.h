// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_TREE_REMOVAL_H_
#define OSTRAFEL_TESTS_MODEL_TREE_REMOVAL_H_

#include <string>

#include "model/run_state.h"

namespace model {

/// Deletes the stored tree under the URI: per pattern one KEYS, then one DEL per key in one
/// flight. False when the reply to a DEL could not be read.
bool RemoveTree(RunState& run, const std::string& uri);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_TREE_REMOVAL_H_
