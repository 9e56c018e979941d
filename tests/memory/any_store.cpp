// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/any_store.h"

#include "memory/memory_server.h"
#include "memory/server_copy.h"
#include "store/store_state.h"

namespace ostrafel {

struct AnyStoreTest::Linked {
  Server server;
};

AnyStoreTest::AnyStoreTest() : linked_(std::make_unique<Linked>()) { Store.emplace(); }

AnyStoreTest::~AnyStoreTest() { Store.emplace(); }

Server* AnyStoreTest::server() { return &linked_->server; }

void AnyStoreTest::PutHash(const std::string& key,
                           const std::map<std::string, std::string>& fields) {
  linked_->server.keys[key] = Hash(fields.begin(), fields.end());
}

void AnyStoreTest::PutList(const std::string& key, const std::vector<std::string>& elements) {
  linked_->server.keys[key] = List(elements);
}

void AnyStoreTest::PutText(const std::string& key) { linked_->server.keys[key] = OtherType(); }

std::string AnyStoreTest::Dump() {
  Server shown = linked_->server;
  for (auto entry = shown.keys.begin(); entry != shown.keys.end();) {
    const bool is_other = std::holds_alternative<OtherType>(entry->second);
    entry = is_other ? shown.keys.erase(entry) : std::next(entry);
  }
  return ostrafel::Dump(shown);
}

}  // namespace ostrafel
