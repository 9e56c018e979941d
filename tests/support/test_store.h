// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The real server, seen past the program under test.
#ifndef OSTRAFEL_TESTS_SUPPORT_TEST_STORE_H_
#define OSTRAFEL_TESTS_SUPPORT_TEST_STORE_H_

#include <hiredis/hiredis.h>

#include <memory>
#include <string>

#include "model/memory_store.h"
#include "model/reply.h"

/// A connection of the test's own to the sandbox's server.
class TestStore {
 public:
  /// Connects to the server's Unix socket. Throws std::runtime_error when that fails.
  explicit TestStore(const std::string& socket_path);

  /// Sends one command, argument by argument, and returns the reply. Throws when there is none.
  model::Reply Run(const model::Command& command);

  /// Likewise, from a line whose arguments are separated by bars as in Dump: "HSET | /r | A | 1".
  model::Reply Run(const std::string& line);

  /// Everything that is stored.
  model::Store Contents();

  /// Replaces everything that is stored.
  void Fill(const model::Store& contents);

  /// Everything that is stored as text, as model::Dump writes it.
  std::string Dump();

  redisContext* context() { return context_.get(); }

 private:
  struct Deleter {
    void operator()(redisContext* context) const { redisFree(context); }
  };
  std::unique_ptr<redisContext, Deleter> context_;
};

#endif  // OSTRAFEL_TESTS_SUPPORT_TEST_STORE_H_
