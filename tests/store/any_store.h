// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The tests that hold for either store of store/server.h: they look at what it answers and holds,
// not at what is sent. Each program that runs them links a store with its part of this fixture.
#ifndef OSTRAFEL_TESTS_STORE_ANY_STORE_H_
#define OSTRAFEL_TESTS_STORE_ANY_STORE_H_

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "store/server.h"

namespace ostrafel {

/// Single operations on the linked store, which is empty at the start of every test.
class AnyStoreTest : public testing::Test {
 protected:
  AnyStoreTest();
  ~AnyStoreTest() override;

  /// The server that operations are given.
  Server* server();

  /// Stores something past the operations. Each takes the place of what the key held.
  void PutHash(const std::string& key, const std::map<std::string, std::string>& fields);
  void PutList(const std::string& key, const std::vector<std::string>& elements);
  /// A value that is neither hash nor list.
  void PutText(const std::string& key);

  /// Everything that is stored, a line for each field and element, as model::Dump writes it; keys
  /// of other types are left out.
  std::string Dump();

  /// What function prints on standard error.
  template <typename Function>
  static std::string Printed(const Function& function) {
    testing::internal::CaptureStderr();
    function();
    return testing::internal::GetCapturedStderr();
  }

 private:
  struct Linked;
  std::unique_ptr<Linked> linked_;
};

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_STORE_ANY_STORE_H_
