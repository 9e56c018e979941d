// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Whatever fails during --apply leaves the old store or the new one, and the program says which.
#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <string>
#include <vector>

#include "diff/apply_fixture.h"
#include "support/resp.h"
#include "support/scoped_setting.h"
#include "support/test_factor.h"

namespace {

constexpr int kKilled = 128 + SIGKILL;

const std::string kUnchanged = "ostrafel-diff: the store was not changed\n";
const std::string kInDoubt =
    "ostrafel-diff: it is not known whether the last transaction was carried out\n";

class Faults : public ApplyTest {
 protected:
  Faults() {
    old_store["/elsewhere"].value = "stays";
    old_store["&&/r/Gone"].value = "other";
    new_store["/elsewhere"].value = "stays";
    Restore();
    EXPECT_EQ(RecordedDiff(apply).status, 0);
    EXPECT_EQ(StoreDifference(store.Contents(), new_store), "");
    whole = recording.flights;
    exec = ExecFlight();
    Restore();
  }
  ~Faults() override {
    (void)store.Run("REPLICAOF | NO | ONE");
    (void)store.Run("ACL | SETUSER | default | +@all");
  }

  void Restore() { store.Fill(old_store); }

  // Runs --apply with this plan on the old store.
  Finished Run(const std::function<void(Recorder&)>& what_fails) {
    Restore();
    plan = what_fails;
    return RecordedDiff(apply);
  }

  // Expects that a run has failed without changing anything, and has said so.
  void ExpectUnchanged(const Finished& finished, const std::string& reason) {
    EXPECT_EQ(finished.out, "");
    EXPECT_NE(finished.err.find(reason), std::string::npos) << finished.err;
    EXPECT_EQ(finished.err.substr(finished.err.find('\n') + 1), kUnchanged);
    EXPECT_EQ(finished.status, 2);
    EXPECT_EQ(StoreDifference(store.Contents(), old_store), "");
  }

  // Expects the end of a run that has failed, or overcome what was wrong.
  void ExpectOldOrNew(const Finished& finished) {
    EXPECT_EQ(finished.err.empty(), finished.status == 0);
    EXPECT_EQ(finished.out.empty(), finished.status == 2);
    EXPECT_EQ(StoreDifference(store.Contents(), finished.status == 0 ? new_store : old_store), "");
  }

  // Expects the end of a run whose connection broke. When EXEC was sent, it was carried out, too.
  void ExpectBroken(const Finished& finished, std::size_t flight) {
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.status, 2);
    EXPECT_EQ(finished.err.rfind("ostrafel-diff: the connection to Redis failed: ", 0), 0U)
        << finished.err;
    EXPECT_EQ(finished.err.substr(finished.err.find('\n') + 1),
              flight < exec ? kUnchanged : kInDoubt);
    EXPECT_EQ(StoreDifference(store.Contents(), flight < exec ? old_store : new_store), "");
  }

  const std::string old_file = tree.Write("old.json", R"({"A": 1, "L": [1, 2], "Gone": {"z": 1}})");
  const std::string new_file = tree.Write("new.json", R"({"A": 2, "L": [1, 3, {"y": 2}]})");
  const std::vector<std::string> apply = {"--apply", new_file, "/r"};
  model::Store old_store = After("create", {}, old_file, "/r");
  model::Store new_store = After("create", {}, new_file, "/r");
  std::vector<model::Flight> whole;  // of a run that nothing disturbs
  std::size_t exec = 0;              // the flight that changes the store
};

TEST_F(Faults, AKillAfterAnyCommandLeavesTheOldStoreOrTheNewOne) {
  for (std::size_t flight = 0; flight < whole.size(); ++flight) {
    for (std::size_t commands = 0; commands <= whole[flight].commands.size(); ++commands) {
      SCOPED_TRACE(std::to_string(commands) + " commands of flight " + std::to_string(flight));
      const Finished finished =
          Run([&](Recorder& recorder) { recorder.KillAfter(flight, commands); });
      ASSERT_EQ(finished.status, kKilled);
      const bool is_new = flight == exec && commands == 1;
      const auto expected = is_new ? new_store : old_store;
      ASSERT_EQ(StoreDifference(store.Contents(), expected), "");
    }
  }
}

TEST_F(Faults, AConnectionThatBreaksBeforeAReplyLeavesWhatIsSaid) {
  for (std::size_t flight = 0; flight < whole.size(); ++flight) {
    for (std::size_t replies = 0; replies < whole[flight].replies.size(); ++replies) {
      SCOPED_TRACE(std::to_string(replies) + " replies of flight " + std::to_string(flight));
      ExpectBroken(Run([&](Recorder& recorder) { recorder.CutAfter(flight, replies); }), flight);
      if (HasFailure()) return;
    }
  }
}

TEST_F(Faults, AConnectionThatBreaksAfterAnyByteLeavesWhatIsSaid) {
  const std::size_t step = TestFactor() >= 10 ? 1 : 7;
  for (std::size_t flight = 0; flight < whole.size(); ++flight) {
    std::size_t size = 0;
    for (const model::Reply& reply : whole[flight].replies) size += Format(reply).size();
    for (std::size_t bytes = 0; bytes < size; bytes += flight == exec ? 1 : step) {
      SCOPED_TRACE(std::to_string(bytes) + " bytes of flight " + std::to_string(flight));
      ExpectBroken(Run([&](Recorder& recorder) { recorder.CutAfterBytes(flight, bytes); }), flight);
      if (HasFailure()) return;
    }
  }
}

// A whole flight is answered otherwise than it should, and does not reach the server.
TEST_F(Faults, WrongRepliesAreRefusedOrOvercome) {
  const std::vector<std::string> kinds = {"+OK\r\n", "+QUEUED\r\n", "-ERR no\r\n", ":1\r\n",
                                          "$-1\r\n", "$1\r\nx\r\n", "*-1\r\n",     "*1\r\n:1\r\n"};
  for (std::size_t flight = 0; flight < whole.size(); ++flight) {
    const std::string good = Format(whole[flight].replies.front());
    for (const std::string& kind : kinds) {
      if (kind == good) continue;
      SCOPED_TRACE("flight " + std::to_string(flight) + ": " + kind);
      std::string answer;
      for (std::size_t i = 0; i < whole[flight].commands.size(); ++i) answer += kind;
      const Finished finished = Run([&](Recorder& recorder) { recorder.Answer(flight, answer); });
      ExpectOldOrNew(finished);
      if (HasFailure()) return;
    }
  }
}

TEST_F(Faults, ATransactionThatIsCarriedOutInPartIsInDoubt) {
  const std::size_t commands = whole[exec - 1].commands.size();
  std::string answer = "*" + std::to_string(commands) + "\r\n-ERR a reason\r\n";
  for (std::size_t i = 1; i < commands; ++i) answer += ":1\r\n";
  const Finished finished = Run([&](Recorder& recorder) { recorder.Answer(exec, answer); });
  EXPECT_EQ(
      finished.err,
      "ostrafel-diff: Redis answers a command of the transaction with: ERR a reason\n" + kInDoubt);
  EXPECT_EQ(finished.status, 2);
}

TEST_F(Faults, ALoadingServerIsLeftAlone) {
  const std::string loading = "-LOADING Redis is loading the dataset in memory\r\n";
  const Finished finished = Run([&](Recorder& recorder) { recorder.Answer(0, loading); });
  ExpectUnchanged(finished, "LOADING Redis is loading the dataset in memory");
}

TEST_F(Faults, AServerThatCannotSaveIsLeftAlone) {
  const std::string refusal = "MISCONF Redis is configured to save RDB snapshots";
  std::string answer;
  for (std::size_t i = 0; i < whole[exec - 1].commands.size(); ++i)
    answer += "-" + refusal + "\r\n";
  ExpectUnchanged(Run([&](Recorder& recorder) { recorder.Answer(exec - 1, answer); }), refusal);
}

TEST_F(Faults, AReplicaIsLeftAlone) {
  Restore();
  plan = nullptr;
  // Of a primary that there is not: the replica keeps what it has.
  ASSERT_EQ(store.Run("REPLICAOF | 127.0.0.1 | 1").text, "OK");
  ExpectUnchanged(RecordedDiff(apply), "READONLY You can't write against a read only replica.");
}

TEST_F(Faults, FullMemoryLeavesTheOldStore) {
  for (std::size_t flight = 0; flight <= exec; ++flight) {
    SCOPED_TRACE("full before flight " + std::to_string(flight));
    const ScopedSetting unlimited(&store, "maxmemory", "0");
    const Finished finished = Run([&](Recorder& recorder) {
      recorder.Before(flight, [&] { (void)store.Run("CONFIG | SET | maxmemory | 1"); });
    });
    ExpectUnchanged(finished, "OOM");
    if (HasFailure()) return;
  }
}

TEST_F(Faults, CommandsThatTheUserMayNotSendLeaveTheOldStore) {
  for (const std::string name : {"watch", "multi", "exec", "hset", "del", "rpush"}) {
    SCOPED_TRACE(name);
    const Finished finished = Run([&](Recorder& recorder) {
      // Reading needs MULTI and EXEC, too.
      const std::size_t flight = name == "exec" ? exec : name == "multi" ? exec - 2 : 0;
      recorder.Before(flight, [&] {
        (void)store.Run(model::Command{"ACL", "SETUSER", "default", "-" + name});
      });
    });
    (void)store.Run("ACL | SETUSER | default | +@all");
    ExpectUnchanged(finished, "NOPERM");
  }
}

}  // namespace
