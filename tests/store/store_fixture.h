// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_STORE_STORE_FIXTURE_H_
#define OSTRAFEL_TESTS_STORE_STORE_FIXTURE_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "redis/redis_server.h"
#include "store/pending.h"
#include "support/recorder.h"
#include "support/test_store.h"

namespace ostrafel {

/// Single operations of the store against a real, empty server, through a Recorder.
class StoreTest : public testing::Test {
 protected:
  StoreTest();
  ~StoreTest() override;

  /// The server that operations are given.
  Server* server() { return &server_; }

  /// Closes the connection and returns the commands that were sent, as Describe writes flights.
  std::string Sent();

  /// What function prints on standard error.
  template <typename Function>
  static std::string Printed(const Function& function) {
    testing::internal::CaptureStderr();
    function();
    return testing::internal::GetCapturedStderr();
  }

  TestStore store;
  Recorder recorder;

 private:
  Server server_;
};

/// Makes a later QueueRemoval fail, after this many that succeed: the batch is full by then, and
/// its flush will be refused because it holds a field of a key that is no hash.
void FillRemovalBatch(TestStore* store, std::uint32_t removals_before = 0);

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_STORE_STORE_FIXTURE_H_
