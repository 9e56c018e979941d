// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_BATCHES_H_
#define OSTRAFEL_TESTS_MODEL_BATCHES_H_

#include <string>

#include "model/run_state.h"

namespace model {

/// So many queued items make the next one flush its batch first.
inline constexpr unsigned kBatchLimit = 2000;

/// What a queued removal removes.
enum class RemovalKind { kField, kElement, kKey };

/// Sends what waits for removal in one flight and empties the containers. True when every reply
/// was an integer or nothing waited.
bool FlushRemovals(RunState& run);

/// The same for hash fields.
bool FlushHashes(RunState& run);

/// The same for list values; an integer reply must be at least 1.
bool FlushLists(RunState& run);

/// Queues one field of a hash; false, and nothing queued, when the flush that was due failed.
bool PutField(RunState& run, const std::string& key, const std::string& field,
              const std::string& value);

/// Queues one value for the end of a list; false, and nothing queued, when the flush that was due
/// failed.
bool PutItem(RunState& run, const std::string& key, const std::string& value);

/// Queues one removal; false, and nothing queued, when the flush that was due failed. The text is
/// the field or the element and counts for nothing with a whole key.
bool QueueRemoval(RunState& run, const std::string& key, const std::string& text, RemovalKind kind);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_BATCHES_H_
