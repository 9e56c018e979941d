// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_PRUNING_H_
#define OSTRAFEL_TESTS_MODEL_PRUNING_H_

#include <string>

#include "model/run_state.h"

namespace model {

/// What the new value of a property puts at its child key.
enum class ExpectedKind { kHash, kList, kNone };

/// Queues the removal of all that the store holds for a property in an older shape. An empty child
/// key is derived from the parent key and the name. False when a read failed or a removal could not
/// be queued; what was queued before stays.
bool PruneProperty(RunState& run, const std::string& parent_key, const std::string& name,
                   const std::string& child_key, bool in_list, ExpectedKind expected);

/// Queues every key that matches the pattern for unlinking, then marks the pattern's prefix.
bool UnlinkMatchingKeys(RunState& run, const std::string& pattern);

/// True when a prefix of the pattern that ends before a slash is marked.
bool IsUnderPrunedPrefix(const RunState& run, const std::string& pattern);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_PRUNING_H_
