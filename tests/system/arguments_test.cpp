// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <string>
#include <vector>

#include "driver/usage_text.h"
#include "system/system_fixture.h"

namespace {

class CommandLine : public SystemTest {};

TEST_F(CommandLine, WithoutArgumentsOnlyTheUsageIsPrinted) {
  ExpectFailure({}, kUsageText);
  EXPECT_EQ(recording.connections, 0);
}

TEST_F(CommandLine, AWrongNumberOfArgumentsIsRefusedBeforeConnecting) {
  const std::vector<std::vector<std::string>> cases = {
      {"create"}, {"create", "d"}, {"create", "d", "/r", "f", "more"}};
  for (const auto& arguments : cases) {
    ExpectFailure(arguments, std::string("Incorrect arguments number.\n") + kUsageText);
    EXPECT_EQ(recording.connections, 0);
  }
}

TEST_F(CommandLine, AnEmptyArgumentIsRefusedBeforeConnecting) {
  const std::vector<std::vector<std::string>> cases = {
      {"", "d", "/r"}, {"create", "", "/r"}, {"create", "d", ""}, {"", "", "", ""}};
  for (const auto& arguments : cases) {
    ExpectFailure(arguments,
                  std::string("The required property <Action> <StaticDataPath> <URI> should be a "
                              "non-empty string.\n") +
                      kUsageText);
    EXPECT_EQ(recording.connections, 0);
  }
}

TEST_F(CommandLine, AnUnknownActionIsRefusedAfterConnecting) {
  tree.Write("index.json", R"({"A": 1})");
  for (const char* action : {"creates", "delete", "creat", "create ", "updat\xC9"}) {
    ExpectFailure({action, tree.path(), "/r"},
                  std::string("Invalid Action parameter.\n") + kUsageText);
    EXPECT_EQ(recording.connections, 1) << action;
    EXPECT_EQ(Sent(), "") << action;
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
