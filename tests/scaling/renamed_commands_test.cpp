// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A server whose configuration takes away the commands by which a create removes the old tree. That
// an ACL does the same is a table in system/status_zero_server_test.cpp.
#include <string>

#include "scaling/scaling_fixture.h"

namespace {

class RenamedCommands : public ScalingTest {};

// STATUS 0 DOES NOT MEAN: KEYS or DEL is refused
TEST_F(RenamedCommands, EveryCreateAppendsToEveryArray) {
  const std::string file = tree.Write("a.json", R"({"A": [1, 2]})");
  for (const char* command : {"KEYS", "DEL"}) {
    for (const char* new_name : {"\"\"", "hidden"}) {
      SCOPED_TRACE(std::string(command) + " " + new_name);
      RedisNode node({"rename-command " + std::string(command) + " " + new_name});
      LoadOn(node, {"create", file, "/r"});
      LoadOn(node, {"create", file, "/r"});
      EXPECT_EQ(node.store().Run("LLEN | &&/r/A").integer, 4);
      const model::Reply look = node.store().Run(model::Command{command, "/none"});
      EXPECT_EQ(look.type, model::Reply::Type::kError);
      EXPECT_EQ(look.text.rfind("ERR unknown command", 0), 0U) << look.text;
    }
  }
}

}  // namespace
