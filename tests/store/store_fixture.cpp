// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/store_fixture.h"

#include <unistd.h>

#include "model/endpoint.h"
#include "store/store_state.h"
#include "support/sandbox.h"

namespace ostrafel {

namespace {

std::string RecorderSocket() { return RuntimeDirectory() + "/recorder.sock"; }

}  // namespace

StoreTest::StoreTest()
    : store(ServerSocket()),
      recorder(RecorderSocket(), ServerSocket()),
      server_{StoreConnection(redisConnectUnix(RecorderSocket().c_str()))} {
  recorder.Watch(getpid());
  (void)store.Run("FLUSHALL");
  Store.emplace();
}

StoreTest::~StoreTest() { Store.emplace(); }

std::string StoreTest::Sent() {
  server_.connection.reset();
  return Describe(recorder.Finish().flights);
}

void FillRemovalBatch(TestStore* store, std::uint32_t removals_before) {
  (void)store->Run("SET | no hash | text");
  Store->RemovalBatch.hash_fields["no hash"] = {"f"};
  Store->RemovalBatchCount = BatchLimit - removals_before;
}

}  // namespace ostrafel
