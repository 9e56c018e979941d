// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A Redis server of a test's own, beside the sandbox's, that can be ended and started again.
#ifndef OSTRAFEL_TESTS_SCALING_REDIS_NODE_H_
#define OSTRAFEL_TESTS_SCALING_REDIS_NODE_H_

#include <sys/types.h>

#include <functional>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/temp_directory.h"
#include "support/test_store.h"

/// True as soon as the condition holds; false when it does not within a minute.
bool Eventually(const std::function<bool()>& condition);

/// A redis-server on a Unix socket and on a free port of the loopback interface (replicas and the
/// nodes of a cluster find each other by TCP only), with files of its own, all of which are removed
/// at the end. What the settings do not say is as Redis has it by default. Failures to start throw
/// std::runtime_error.
class RedisNode {
 public:
  /// Starts the server with these lines in its redis.conf.
  explicit RedisNode(const std::vector<std::string>& settings = {});
  ~RedisNode();
  RedisNode(const RedisNode&) = delete;
  RedisNode& operator=(const RedisNode&) = delete;

  /// Starts it again over the files that it left, and waits until it has read them.
  void Start();

  /// Sends a signal that ends it, and waits for the end. Returns the status and, as out, the log.
  Finished End(int signal);

  /// Waits for an end that was caused otherwise.
  Finished WaitForEnd();

  /// Sends a signal.
  void Signal(int signal) const;

  /// A connection to the running server. Gone when the server has ended.
  TestStore& store() { return *store_; }

  /// A line of INFO, such as "role" or "aof_buffer_length"; empty when there is none.
  std::string Info(const std::string& name);

  std::string Socket() const { return files_.path("redis.sock"); }
  std::string ConfigPath() const { return files_.path("redis.conf"); }
  const std::string& port() const { return port_; }
  const std::string& bus_port() const { return bus_port_; }

 private:
  bool HasEnded() const;
  bool IsReady();

  TempDirectory files_;
  std::string port_;
  std::string bus_port_;
  std::future<Finished> run_;
  pid_t process_id_ = 0;
  std::unique_ptr<TestStore> store_;
};

#endif  // OSTRAFEL_TESTS_SCALING_REDIS_NODE_H_
