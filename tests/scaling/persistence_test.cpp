// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What a server that ends, well or badly, still holds when it starts again.
#include <csignal>
#include <cstddef>
#include <future>
#include <stdexcept>
#include <string>
#include <vector>

#include "scaling/scaling_fixture.h"

namespace {

constexpr int kKilled = 128 + SIGKILL;

class Snapshots : public ScalingTest {};

TEST_F(Snapshots, KeepALoadOverAnOrderlyEnd) {
  const std::string created = PlainDump({create});
  const std::string updated = PlainDump({create, update});
  RedisNode node;
  LoadOn(node, create);
  EXPECT_EQ(node.End(SIGTERM).status, 0);  // as systemd ends it
  node.Start();
  EXPECT_EQ(node.store().Dump(), created);

  LoadOn(node, update);
  EXPECT_THROW((void)node.store().Run("SHUTDOWN"), std::runtime_error);  // it leaves unanswered
  EXPECT_EQ(node.WaitForEnd().status, 0);
  node.Start();
  EXPECT_EQ(node.store().Dump(), updated);
}

// The first snapshot is due a minute after 10,000 changes, five after 100 or an hour after one.
TEST_F(Snapshots, DoNotKeepAFreshLoadOverAKill) {
  const std::string created = PlainDump({create});
  RedisNode node;
  LoadOn(node, create);
  EXPECT_EQ(node.End(SIGKILL).status, kKilled);
  node.Start();
  EXPECT_EQ(node.store().Dump(), "");
  LoadOn(node, create);
  EXPECT_EQ(node.store().Dump(), created);
}

TEST_F(Snapshots, AreNotReadByAServerThatIsToldOfALogOnlyInItsFile) {
  RedisNode node;
  LoadOn(node, create);
  ASSERT_EQ(node.End(SIGTERM).status, 0);
  WriteFile(node.ConfigPath(), ReadFile(node.ConfigPath()) + "appendonly yes\n");
  node.Start();
  EXPECT_EQ(node.store().Dump(), "");
}

TEST_F(Snapshots, AreFollowedByALogThatIsSwitchedOnWhileTheServerRuns) {
  const std::string created = PlainDump({create});
  RedisNode node;
  LoadOn(node, create);
  ASSERT_EQ(node.store().Run("CONFIG | SET | appendonly | yes").text, "OK");
  WriteFile(node.ConfigPath(), ReadFile(node.ConfigPath()) + "appendonly yes\n");
  // Until the log has been started with what is stored, a kill loses it.
  ASSERT_TRUE(Eventually([&] {
    return node.Info("aof_rewrite_in_progress") == "0" &&
           node.Info("aof_rewrite_scheduled") == "0" && node.Info("aof_current_size") != "0";
  }));
  ASSERT_EQ(node.Info("aof_last_bgrewrite_status"), "ok");
  ASSERT_EQ(node.End(SIGKILL).status, kKilled);
  node.Start();
  EXPECT_EQ(node.store().Dump(), created);
}

// The append-only file. The parameter is appendfsync.
class AppendOnly : public ScalingTest, public testing::WithParamInterface<const char*> {
 protected:
  bool IsSynced() const { return GetParam() == std::string("always"); }

  // What waits in the server's own memory is lost with it. With "always" nothing that was answered
  // waits there; with "everysec" it may, for up to two seconds, while an older part is synced.
  void ExpectWritten() {
    if (IsSynced()) return;
    EXPECT_TRUE(Eventually([&] {
      return node.Info("aof_buffer_length") == "0" && node.Info("aof_pending_bio_fsync") == "0";
    }));
  }

  void KillAndRestart() {
    ASSERT_EQ(node.End(SIGKILL).status, kKilled);
    node.Start();
  }

  RedisNode node{{"appendonly yes", std::string("appendfsync ") + GetParam()}};
};

INSTANTIATE_TEST_SUITE_P(Fsync, AppendOnly, testing::Values("always", "everysec"),
                         [](const auto& instance) { return std::string(instance.param); });

TEST_P(AppendOnly, KeepsALoadOverAKill) {
  const std::string created = PlainDump({create});
  const std::string updated = PlainDump({create, update});
  LoadOn(node, create);
  ExpectWritten();
  ASSERT_NO_FATAL_FAILURE(KillAndRestart());
  EXPECT_EQ(node.store().Dump(), created);
  LoadOn(node, update);
  ExpectWritten();
  ASSERT_NO_FATAL_FAILURE(KillAndRestart());
  EXPECT_EQ(node.store().Dump(), updated);
  LoadOn(node, create);
  ASSERT_EQ(node.End(SIGTERM).status, 0);  // which writes what waits
  node.Start();
  EXPECT_EQ(node.store().Dump(), created);
}

// As when the machine stops: the program has come no further, and the server goes with it.
TEST_P(AppendOnly, KeepsTheFirstPartOfALoadThatEndsWithTheServer) {
  const std::string created = PlainDump({create});
  ASSERT_EQ(recording.flights.size(), 5U);
  constexpr std::size_t kHashes = 3;  // flights: three KEYS, the hashes, the lists
  const std::vector<std::pair<std::size_t, std::size_t>> ends = {
      {kHashes, 1}, {kHashes, 700}, {kHashes + 1, 1}, {kHashes + 1, 200}};
  for (const auto& [flight, sent] : ends) {
    SCOPED_TRACE("killed after command " + std::to_string(sent) + " of flight " +
                 std::to_string(flight));
    (void)node.store().Run("FLUSHALL");
    plan = [flight = flight, sent = sent](Recorder& recorder) { recorder.KillAfter(flight, sent); };
    ASSERT_EQ(OstrafelOn(node, create).status, kKilled);
    plan = nullptr;
    model::Store part;
    for (const model::Command& command : model::CommandsOf(recording.flights)) {
      (void)model::Execute(part, command);
    }
    ExpectWritten();
    ASSERT_NO_FATAL_FAILURE(KillAndRestart());
    EXPECT_EQ(node.store().Dump(), model::Dump(part));
    EXPECT_NE(node.store().Dump(), created);
    LoadOn(node, create);
    EXPECT_EQ(node.store().Dump(), created);
  }
}

// The server is killed while it is sent more than it can have answered.
TEST_P(AppendOnly, KeepsTheFirstPartOfALoadThatItIsKilledIn) {
  constexpr std::size_t kMembers = 40000;
  std::string document = "{\"First\": 0";
  for (std::size_t i = 1; i < kMembers; ++i) document += ", \"" + std::to_string(i) + "\": 1";
  const Arguments arguments = {"create", tree.Write("a.json", document + "}"), "/r"};
  for (const long long enough : {1, 2500, 4000}) {
    SCOPED_TRACE("killed after " + std::to_string(enough) + " members");
    (void)node.store().Run("FLUSHALL");
    ExpectWritten();
    const std::string size = node.Info("aof_current_size");
    std::future<bool> killer = std::async(std::launch::async, [&] {
      const bool has_come = Eventually([&] {
        return node.store().Run("HLEN | /r").integer >= enough &&
               node.Info("aof_current_size") != size;
      });
      node.Signal(SIGKILL);
      return has_come;
    });
    const Finished finished = OstrafelOn(node, arguments);
    ASSERT_TRUE(killer.get());
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.status, 255);
    ASSERT_EQ(node.WaitForEnd().status, kKilled);
    node.Start();

    const std::vector<model::Command> sent = model::CommandsOf(recording.flights);
    std::size_t answered = 0;
    for (const model::Flight& flight : recording.flights) answered += flight.replies.size();
    constexpr std::size_t kQuestions = 3;
    ASSERT_GT(sent.size(), kQuestions);
    const std::size_t stored =
        kQuestions + static_cast<std::size_t>(node.store().Run("HLEN | /r").integer);
    if (IsSynced()) {
      EXPECT_GE(stored, answered);
    }
    EXPECT_GT(stored, kQuestions);
    ASSERT_LE(stored, sent.size());
    ASSERT_LT(stored, kQuestions + kMembers);
    model::Store part;
    for (std::size_t i = 0; i < stored; ++i) (void)model::Execute(part, sent[i]);
    EXPECT_TRUE(node.store().Contents() == part);
  }
  LoadOn(node, arguments);
  EXPECT_EQ(node.store().Run("HLEN | /r").integer, static_cast<long long>(kMembers));
}

}  // namespace
