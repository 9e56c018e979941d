// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_RUN_STATE_H_
#define OSTRAFEL_TESTS_MODEL_RUN_STATE_H_

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/endpoint.h"
#include "model/reply.h"

namespace model {

/// All that one modelled run knows.
struct RunState {
  RunState(Endpoint& server, std::string include_folder)
      : endpoint(server), include_root(std::move(include_folder)) {}

  Endpoint& endpoint;
  std::string include_root;

  /// True while stale data is pruned before a property is written.
  bool merge_mode = true;

  /// Root keys and linked objects' keys whose members have been written.
  std::map<std::string, bool> visited;

  /// Prefixes below which every key has been queued for unlinking.
  std::map<std::string, bool> pruned_prefixes;

  // What waits for a flush, and how much was queued since the producer's own last flush.
  std::vector<std::string> keys_to_unlink;
  std::map<std::string, std::vector<std::string>> list_removals;
  std::map<std::string, std::vector<std::string>> field_removals;
  unsigned removal_count = 0;
  std::map<std::string, std::map<std::string, std::string>> hash_batch;
  unsigned hash_count = 0;
  std::map<std::string, std::vector<std::string>> list_batch;
  unsigned list_count = 0;

  // What the run has printed.
  std::string out;
  std::string err;
};

/// Sends one command and waits for its reply; none when the connection broke.
inline std::optional<Reply> Ask(RunState& run, const Command& command) {
  const std::vector<Reply> replies = run.endpoint.Exchange({command});
  if (replies.empty()) return std::nullopt;
  return replies.front();
}

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_RUN_STATE_H_
