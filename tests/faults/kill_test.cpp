// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The program is killed at any moment. What it had sent reaches the store; the next create makes
// the store that of a load that nothing disturbed.
#include <csignal>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "faults/breaking_endpoint.h"
#include "faults/eventful_tree.h"
#include "faults/fault_fixture.h"

namespace {

constexpr int kKilled = 128 + SIGKILL;

class KillAtAnyMoment : public FaultTest {
 protected:
  void ExpectCleanLoad(const std::vector<std::string>& arguments, const model::Store& store,
                       const std::string& expected) {
    const FaultedRun run = Run(arguments, store, nullptr);
    EXPECT_EQ(run.finished.err, "");
    EXPECT_EQ(run.finished.status, 0);
    EXPECT_EQ(model::Dump(run.store), expected);
  }
};

TEST_F(KillAtAnyMoment, ACreateMendsWhatAKillAfterEachCommandLeaves) {
  const std::vector<std::string> arguments = {"create", tree.path(), eventful::kUri};
  eventful::WriteFiles(tree, eventful::Generation::kSecond);
  model::Store old = PredictWhole(arguments, {}, "").store;
  old["/elsewhere"].value = model::List{"stays"};
  eventful::WriteFiles(tree, eventful::Generation::kFirst);
  const FaultedRun clean = Run(arguments, old, nullptr);
  ASSERT_EQ(clean.finished.status, 0);
  const std::string expected = model::Dump(clean.store);
  ASSERT_NE(expected, model::Dump(old));

  const std::vector<model::Command> commands = model::CommandsOf(clean.recording.flights);
  ASSERT_GE(commands.size(), 150U);
  model::Store carried_out = old;
  for (std::size_t k = 0; k < commands.size(); ++k) {
    SCOPED_TRACE("killed after command " + std::to_string(k));
    (void)model::Execute(carried_out, commands[k]);
    const FaultedRun killed =
        Run(arguments, old, [&](ScriptedServer& server) { server.KillClientAfter(k); });
    ASSERT_EQ(killed.finished.status, kKilled);
    ASSERT_EQ(model::CommandsOf(killed.recording.flights).size(), k + 1);
    ASSERT_EQ(model::Dump(killed.store), model::Dump(carried_out));
    ASSERT_NO_FATAL_FAILURE(ExpectCleanLoad(arguments, killed.store, expected));
    if (HasFailure()) return;
  }
}

// More than a socket holds, so that the program is killed in the middle of the write.
TEST_F(KillAtAnyMoment, ACreateMendsWhatAKillWithinAWriteLeaves) {
  constexpr std::size_t kMembers = 1500;
  std::string document = "{\"First\": 0";
  for (std::size_t i = 0; i < kMembers; ++i) {
    document += ", \"" + std::to_string(i) + "\": \"" + std::string(1000, 'x') + "\"";
  }
  const std::vector<std::string> arguments = {"create", tree.Write("a.json", document + "}"), "/r"};
  const FaultedRun clean = Run(arguments, {}, nullptr);
  ASSERT_EQ(clean.finished.status, 0);
  ASSERT_EQ(clean.recording.flights.size(), 4U);

  const FaultedRun killed =
      Run(arguments, {}, [](ScriptedServer& server) { server.KillClientWhileItSends(3); });
  EXPECT_EQ(killed.finished.status, kKilled);
  ASSERT_EQ(killed.recording.flights.size(), 4U);
  const std::size_t arrived = killed.recording.flights[3].commands.size();
  EXPECT_GT(arrived, 0U);
  EXPECT_LT(arrived, kMembers);
  ASSERT_EQ(killed.store.size(), 1U);
  EXPECT_EQ(std::get<model::Hash>(killed.store.at("/r").value).size(), arrived);
  ExpectCleanLoad(arguments, killed.store, model::Dump(clean.store));
}

}  // namespace
