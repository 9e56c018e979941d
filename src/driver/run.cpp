// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "driver/run.h"

#include <cstdio>
#include <optional>

#include "base/equals_ignore_case.h"
#include "base/message.h"
#include "connection/broken_pipe.h"
#include "connection/store_connection.h"
#include "document/json_file.h"
#include "driver/arguments.h"
#include "driver/standard_descriptors.h"
#include "driver/usage.h"
#include "loading/load_end.h"
#include "loading/tree_loading.h"
#include "redis/redis_server.h"

namespace ostrafel {

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = -1;

std::optional<LoadAction> ParseAction(const char* word) {
  if (EqualsIgnoreCase(word, "create")) return LoadAction::kCreate;
  if (EqualsIgnoreCase(word, "update")) return LoadAction::kUpdate;
  return std::nullopt;
}

}  // namespace

int RunOstrafel(int argc, char** argv) {
  if (!OccupyStandardDescriptors()) return kFailure;
  SurviveBrokenPipe();
  WatchJsonMemory();
  Arguments arguments;
  if (!CheckArguments(argc, argv, &arguments)) return kFailure;

  Server server = {OpenStoreConnection()};  // closes itself on every later return
  if (!server.connection) {
    PrintMessage("Failed to connect to Redis\n");
    return kFailure;
  }
  // Only now: without a server, a wrong word is told as a failed connection.
  const std::optional<LoadAction> action = ParseAction(arguments.action);
  if (!action) {
    PrintMessage("Invalid Action parameter.\n");
    PrintUsage();
    return kFailure;
  }
  const LoadOutcome outcome =
      LoadTree(&server, {*action, arguments.static_data_path, arguments.uri, arguments.file_name});
  const bool is_loaded = outcome.end == LoadEnd::kDone;
  // Who reads that a load has succeeded, or which file has failed, finds the connection closed.
  if (is_loaded || outcome.end == LoadEnd::kNotWritten) server.connection.reset();
  PrintLoadEnd(outcome);
  if (!is_loaded) return kFailure;
  (void)std::puts(">>> Ostrafel parsing successfully.");
  return kSuccess;
}

}  // namespace ostrafel
