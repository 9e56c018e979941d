// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/resources.h"

#include <gtest/gtest.h>

#include <string>

namespace ostrafel {

namespace {

Server Holding(const std::string& key) { return {{{key, Hash{{"x", "1"}}}}}; }

TEST(ResourceOf, AResourceIsItself) { EXPECT_EQ(ResourceOf("/r/a", Holding("/r"), {}), "/r/a"); }

TEST(ResourceOf, APartIsTheLastResourceOnItsWay) {
  EXPECT_EQ(ResourceOf("&&/r/a/b/0/c", Holding("/r"), {}), "/r");
  EXPECT_EQ(ResourceOf("&&/r/a/b/0/c", Holding("/r"), Holding("/r/a")), "/r/a");
  EXPECT_EQ(ResourceOf("&&/r/a/b", Holding("/r/a"), Holding("/r")), "/r/a");
}

TEST(ResourceOf, TakesAResourceWhoseKeyEndsWithASlash) {
  EXPECT_EQ(ResourceOf("&&/r/a", {}, Holding("/r/")), "/r/");
  EXPECT_EQ(ResourceOf("&&/a", {}, Holding("/")), "/a");
}

TEST(ResourceOf, APartOfNoResourceIsItsPath) {
  EXPECT_EQ(ResourceOf("&&/r/a", {}, {}), "/r/a");
  EXPECT_EQ(ResourceOf("&&", {}, Holding("")), "");
  // The twin of a resource is no part of it.
  EXPECT_EQ(ResourceOf("&&/r/a", Holding("/r/a"), {}), "/r/a");
}

}  // namespace

}  // namespace ostrafel
