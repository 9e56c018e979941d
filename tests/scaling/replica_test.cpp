// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A tree is loaded into a primary; its replicas hold the same store.
#include <csignal>
#include <string>

#include "scaling/scaling_fixture.h"

namespace {

class Replicas : public ScalingTest {
 protected:
  static std::vector<std::string> Following(const RedisNode& primary) {
    return {"replicaof 127.0.0.1 " + primary.port()};
  }

  // Waits until so many replicas have everything that the primary has been told. WAIT counts from
  // the connection's own last write (with older servers, from its last command); PUBLISH makes that
  // one of after the load, and changes no key.
  static void ExpectFollowed(RedisNode& primary, int replicas) {
    ASSERT_EQ(primary.store().Run("PUBLISH | loads | done").integer, 0);
    const std::string count = std::to_string(replicas);
    EXPECT_EQ(primary.store().Run("WAIT | " + count + " | 60000").integer, replicas);
  }

  // Nothing but the clock of the first copy: by default the primary lets replicas gather for 5
  // seconds before it sends them one.
  RedisNode primary{{"repl-diskless-sync-delay 0"}};
};

TEST_F(Replicas, FollowACreateAndAnUpdate) {
  const std::string created = PlainDump({create});
  const std::string updated = PlainDump({create, update});
  ASSERT_NE(created, updated);
  RedisNode first(Following(primary));
  RedisNode second(Following(primary));

  LoadOn(primary, create);
  ExpectFollowed(primary, 2);
  EXPECT_EQ(primary.store().Dump(), created);
  EXPECT_EQ(first.store().Dump(), created);
  EXPECT_EQ(second.store().Dump(), created);

  LoadOn(primary, update);
  ExpectFollowed(primary, 2);
  EXPECT_EQ(primary.store().Dump(), updated);
  EXPECT_EQ(first.store().Dump(), updated);
  EXPECT_EQ(second.store().Dump(), updated);

  LoadOn(primary, create);
  ExpectFollowed(primary, 2);
  EXPECT_EQ(first.store().Dump(), created);
  EXPECT_EQ(second.store().Dump(), created);
  EXPECT_TRUE(first.store().Run("DBSIZE") == primary.store().Run("DBSIZE"));
}

TEST_F(Replicas, AttachedAfterTheLoadHoldItAndNothingElse) {
  const std::string created = PlainDump({create});
  LoadOn(primary, create);
  RedisNode late;
  (void)late.store().Run("SET | own | value");
  ASSERT_EQ(late.store().Run("REPLICAOF | 127.0.0.1 | " + primary.port()).text, "OK");
  ExpectFollowed(primary, 1);
  EXPECT_EQ(late.store().Dump(), created);
}

TEST_F(Replicas, CatchUpOnALoadThatTheyHaveMissed) {
  const std::string updated = PlainDump({create, update});
  RedisNode replica(Following(primary));
  LoadOn(primary, create);
  ExpectFollowed(primary, 1);
  (void)replica.End(SIGKILL);
  LoadOn(primary, update);
  replica.Start();
  ExpectFollowed(primary, 1);
  EXPECT_EQ(replica.store().Dump(), updated);
}

TEST_F(Replicas, NeedThePrimarysPassword) {
  const std::string created = PlainDump({create});
  RedisNode guarded({"requirepass fondue", "repl-diskless-sync-delay 0"});
  ASSERT_EQ(guarded.store().Run("AUTH | fondue").text, "OK");
  RuntimeFiles files;
  files.unixsocket = guarded.Socket();
  files.requirepass = "fondue";
  Publish(files);
  publishes_socket = false;
  Load(create);

  const std::string refused = guarded.Info("errorstat_NOAUTH");
  RedisNode stranger(Following(guarded));
  EXPECT_TRUE(Eventually([&] { return guarded.Info("errorstat_NOAUTH") != refused; }));
  RedisNode replica({"replicaof 127.0.0.1 " + guarded.port(), "masterauth fondue"});
  ExpectFollowed(guarded, 1);
  EXPECT_EQ(replica.store().Dump(), created);
  EXPECT_EQ(stranger.store().Dump(), "");
  EXPECT_EQ(stranger.Info("master_link_status"), "down");
}

// What scripts get wrong: WAIT as the first command of a connection waits for nothing.
TEST_F(Replicas, AreWaitedForOnlyAfterAWriteOfTheSameConnection) {
  RedisNode replica(Following(primary));
  ExpectFollowed(primary, 1);
  replica.Signal(SIGSTOP);
  LoadOn(primary, create);
  TestStore connection(primary.Socket());
  EXPECT_EQ(connection.Run("WAIT | 1 | 200").integer, 1);
  EXPECT_EQ(connection.Run("PUBLISH | loads | done").integer, 0);
  EXPECT_EQ(connection.Run("WAIT | 1 | 200").integer, 0);
  replica.Signal(SIGCONT);
  EXPECT_EQ(connection.Run("WAIT | 1 | 60000").integer, 1);
  EXPECT_EQ(replica.store().Dump(), primary.store().Dump());
}

// DEL's errors are not looked at, so a create comes as far as the hashes.
TEST_F(Replicas, RefuseLoadsAndKeepTheirStore) {
  const std::string created = PlainDump({create});
  RedisNode replica(Following(primary));
  LoadOn(primary, create);
  ExpectFollowed(primary, 1);

  ExpectFailureOn(replica, create, kHashFailure);
  EXPECT_TRUE(WasReplied("READONLY You can't write against a read only replica."));
  EXPECT_EQ(replica.store().Dump(), created);
  ExpectFailureOn(replica, update,
                  "Some errors occur while removing data from database\n"
                  "The data in database would be incorrect\n"
                  ">>> Fail to write rest of data into redis\n");
  EXPECT_EQ(replica.store().Dump(), created);
  EXPECT_EQ(primary.store().Dump(), created);
}

TEST_F(Replicas, TakeLoadsOncePromoted) {
  const std::string created = PlainDump({create});
  const std::string updated = PlainDump({create, update});
  RedisNode replica(Following(primary));
  LoadOn(primary, create);
  ExpectFollowed(primary, 1);
  (void)primary.End(SIGKILL);
  EXPECT_EQ(replica.store().Dump(), created);
  ASSERT_EQ(replica.store().Run("REPLICAOF | NO | ONE").text, "OK");
  LoadOn(replica, update);
  EXPECT_EQ(replica.store().Dump(), updated);
}

}  // namespace
