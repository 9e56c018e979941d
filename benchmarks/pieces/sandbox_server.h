// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_BENCHMARKS_PIECES_SANDBOX_SERVER_H_
#define OSTRAFEL_BENCHMARKS_PIECES_SANDBOX_SERVER_H_

#include <benchmark/benchmark.h>

#include "connection/store_connection.h"

namespace ostrafel {

/// Connects to the server whose socket OSTRAFEL_SANDBOX_SOCKET names. It is the benchmarks' own:
/// they empty it. Without the variable, returns nothing and marks the benchmark as skipped. A
/// server that cannot be reached ends the program.
[[nodiscard]] StoreConnection ConnectSandboxServer(benchmark::State& state);

/// Removes all that the server holds.
void EmptyServer(redisContext* context);

/// The integer that a command of that one word, or of a word and a key, answers; -1 when it answers
/// something else.
[[nodiscard]] long long AskForInteger(redisContext* context, const char* command,
                                      const char* key = nullptr);

}  // namespace ostrafel

#endif  // OSTRAFEL_BENCHMARKS_PIECES_SANDBOX_SERVER_H_
