// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What an update removes depends on the shape that a member had and on the one that it gets.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/pruning.h"
#include "store/resource_writer.h"
#include "store/store_fixture.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

class UpdateShapes : public StoreTest {
 protected:
  // The keys that an update of /r with this document queues for unlinking.
  std::vector<std::string> Unlinked(const std::string& json) {
    EXPECT_EQ(WriteResource(server(), "/r", Parse(json).get()), 1U);
    return Store->RemovalBatch.keys;
  }
};

using Keys = std::vector<std::string>;

TEST_F(UpdateShapes, AScalarTakesTheObjectBeforeItAway) {
  (void)store.Run("HSET | &&/r/A | x | 1");
  (void)store.Run("HSET | &&/r/A/B | y | 1");
  EXPECT_EQ(Unlinked(R"({"A": 1})"), (Keys{"&&/r/A", "&&/r/A/B"}));
}

TEST_F(UpdateShapes, AnObjectIsMergedIntoTheObjectBeforeIt) {
  (void)store.Run("HSET | &&/r/A | x | 1");
  (void)store.Run("HSET | &&/r/A/B | y | 1");
  EXPECT_EQ(Unlinked(R"({"A": {"x": 2}})"), Keys{});
}

TEST_F(UpdateShapes, AnObjectTakesTheArrayBeforeItAway) {
  (void)store.Run("RPUSH | &&/r/A | 1");
  EXPECT_EQ(Unlinked(R"({"A": {"x": 2}})"), Keys{"&&/r/A"});
}

TEST_F(UpdateShapes, AnArrayReplacesTheArrayBeforeIt) {
  (void)store.Run("RPUSH | &&/r/A | 1");
  EXPECT_EQ(Unlinked(R"({"A": [1]})"), Keys{"&&/r/A"});
}

TEST_F(UpdateShapes, AnObjectInAnArrayIsPrunedAsAnElement) {
  (void)store.Run("RPUSH | &&/r/A/0 | 1");
  EXPECT_EQ(Unlinked(R"({"A": [{"x": 2}]})"), Keys{"&&/r/A/0"});
  EXPECT_FALSE(Store->RemovalBatch.list_values["&&/r/A"].empty());
}

// Only the whole part before a slash counts, the empty one between two slashes included.
TEST_F(UpdateShapes, AMarkThatEndsWithASlashCountsForTheKeysBelowIt) {
  Store->PrunedPrefixes.insert("a/");
  EXPECT_TRUE(IsUnderPrunedPrefix("a//b/*"));
  EXPECT_FALSE(IsUnderPrunedPrefix("a/b/*"));
}

}  // namespace

}  // namespace ostrafel
