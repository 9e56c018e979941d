// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <string>
#include <vector>

#include "driver/usage_text.h"
#include "system/system_fixture.h"

namespace {

class CommandLine : public SystemTest {};

TEST_F(CommandLine, IsRefusedBeforeConnectingButForAnUnknownAction) {
  const std::string number = "Incorrect arguments number.\n";
  const std::string empty =
      "The required property <Action> <StaticDataPath> <URI> should be a non-empty string.\n";
  const std::string action = "Invalid Action parameter.\n";
  tree.Write("index.json", R"({"A": 1})");
  const struct {
    std::vector<std::string> arguments;
    std::string err;
  } cases[] = {{{}, ""},
               {{"create"}, number},
               {{"create", "d"}, number},
               {{"create", "d", "/r", "f", "more"}, number},
               {{"", "d", "/r"}, empty},
               {{"create", "", "/r"}, empty},
               {{"create", "d", ""}, empty},
               {{"", "", "", ""}, empty},
               {{"creates", tree.path(), "/r"}, action},
               {{"delete", tree.path(), "/r"}, action},
               {{"creat", tree.path(), "/r"}, action},
               {{"create ", tree.path(), "/r"}, action},
               {{"updat\xC9", tree.path(), "/r"}, action}};
  for (const auto& c : cases) {
    ExpectFailure(c.arguments, c.err + kUsageText);
    EXPECT_EQ(recording.connections, c.err == action ? 1 : 0);
    EXPECT_EQ(Sent(), "");
  }
}

TEST_F(CommandLine, ActionWordsAreTakenInAnyCase) {
  tree.Write("index.json", R"({"A": 1})");
  for (const char* action : {"create", "CREATE", "Create", "cReAtE"}) {
    Load({action, tree.path(), "/r"});
    EXPECT_EQ(recording.flights.front().commands.front().front(), "keys") << action;
  }
  for (const char* action : {"update", "UPDATE", "uPdAtE"}) {
    Load({action, tree.path(), "/r"});
    EXPECT_EQ(recording.flights.front().commands.front().front(), "TYPE") << action;
  }
}

}  // namespace
