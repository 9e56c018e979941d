// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/any_store.h"

#include "redis/redis_server.h"
#include "store/store_state.h"
#include "support/sandbox.h"
#include "support/test_store.h"

namespace ostrafel {

struct AnyStoreTest::Linked {
  TestStore store{ServerSocket()};
  Server server = {StoreConnection(redisConnectUnix(ServerSocket().c_str()))};
};

AnyStoreTest::AnyStoreTest() : linked_(std::make_unique<Linked>()) {
  (void)linked_->store.Run("FLUSHALL");
  Store.emplace();
}

AnyStoreTest::~AnyStoreTest() { Store.emplace(); }

Server* AnyStoreTest::server() { return &linked_->server; }

void AnyStoreTest::PutHash(const std::string& key,
                           const std::map<std::string, std::string>& fields) {
  (void)linked_->store.Run(model::Command{"DEL", key});
  for (const auto& [name, value] : fields) {
    (void)linked_->store.Run(model::Command{"HSET", key, name, value});
  }
}

void AnyStoreTest::PutList(const std::string& key, const std::vector<std::string>& elements) {
  (void)linked_->store.Run(model::Command{"DEL", key});
  for (const std::string& element : elements) {
    (void)linked_->store.Run(model::Command{"RPUSH", key, element});
  }
}

void AnyStoreTest::PutText(const std::string& key) {
  (void)linked_->store.Run(model::Command{"SET", key, "text"});
}

std::string AnyStoreTest::Dump() {
  model::Store contents;
  for (const auto& [key, stored] : linked_->store.Contents()) {
    if (!std::holds_alternative<std::string>(stored.value)) contents[key] = stored;
  }
  return model::Dump(contents);
}

}  // namespace ostrafel
