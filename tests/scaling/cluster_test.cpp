// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What the nodes of a Redis Cluster answer, and what becomes of a load there. Ostrafel follows no
// MOVED: a store is one node.
#include <map>
#include <string>
#include <vector>

#include "scaling/scaling_fixture.h"

namespace {

constexpr int kFirstSlotOfSecondHalf = 8192;

class ClusterNodes : public ScalingTest {
 protected:
  static std::vector<std::string> ClusterSettings() { return {"cluster-enabled yes"}; }

  static void Assign(RedisNode& node, int first, int last) {
    ASSERT_EQ(node.store()
                  .Run("CLUSTER | ADDSLOTSRANGE | " + std::to_string(first) + " | " +
                       std::to_string(last))
                  .text,
              "OK");
  }

  // Waits until CLUSTER INFO has the line.
  static void ExpectInfo(RedisNode& node, const std::string& line) {
    EXPECT_TRUE(Eventually([&] {
      return node.store().Run("CLUSTER | INFO").text.find(line + "\r\n") != std::string::npos;
    })) << line;
  }

  bool IsOfFirstHalf(const std::string& key) {
    return node.store().Run(model::Command{"CLUSTER", "KEYSLOT", key}).integer <
           kFirstSlotOfSecondHalf;
  }

  // The hashes that a failed create leaves on the node of the first half. Lists are not sent any
  // more.
  std::string FirstHalfOfCreatedHashes() {
    (void)PlainDump({create});
    model::Store half;
    for (const auto& [key, value] : store.Contents()) {
      const bool is_hash = std::holds_alternative<model::Hash>(value.value);
      if (is_hash && IsOfFirstHalf(key)) half[key] = value;
    }
    EXPECT_GT(half.size(), 100U);
    return model::Dump(half);
  }

  // A key of this form that the half of the slots has.
  std::string KeyOf(const std::string& start, bool first_half) {
    int number = 0;
    while (IsOfFirstHalf(start + std::to_string(number)) != first_half) ++number;
    return start + std::to_string(number);
  }

  // The node gives this answer to some command of a create, which then fails and leaves this.
  void ExpectRefusedCreate(const char* answer, const std::string& left) {
    ExpectFailureOn(node, create, kHashFailure);
    EXPECT_TRUE(WasReplied(answer));
    EXPECT_EQ(node.store().Dump(), left);
  }

  RedisNode node{ClusterSettings()};
};

TEST_F(ClusterNodes, OwningEverySlotAreAsAPlainServer) {
  const std::string created = PlainDump({create});
  const std::string updated = PlainDump({create, update});
  Assign(node, 0, 16383);
  ExpectInfo(node, "cluster_state:ok");
  LoadOn(node, create);
  EXPECT_EQ(node.store().Dump(), created);
  LoadOn(node, update);
  EXPECT_EQ(node.store().Dump(), updated);
  LoadOn(node, create);
  EXPECT_EQ(node.store().Dump(), created);
}

TEST_F(ClusterNodes, WithoutSlotsStoreNothing) {
  ExpectInfo(node, "cluster_state:fail");
  ExpectRefusedCreate("CLUSTERDOWN Hash slot not served", "");
}

TEST_F(ClusterNodes, WithSlotsThatNobodyOwnsStoreNothing) {
  Assign(node, 0, kFirstSlotOfSecondHalf - 1);
  ExpectInfo(node, "cluster_slots_ok:8192");
  ExpectRefusedCreate("CLUSTERDOWN The cluster is down", "");
}

TEST_F(ClusterNodes, ContentWithTheirOwnSlotsStoreTheirOwnHashes) {
  Assign(node, 0, kFirstSlotOfSecondHalf - 1);
  ASSERT_EQ(node.store().Run("CONFIG | SET | cluster-require-full-coverage | no").text, "OK");
  ExpectInfo(node, "cluster_state:ok");
  const std::string half = FirstHalfOfCreatedHashes();
  ExpectRefusedCreate("CLUSTERDOWN Hash slot not served", half);
}

// Two nodes that own half of the slots each.
class TwoClusterNodes : public ClusterNodes {
 protected:
  TwoClusterNodes() {
    Assign(node, 0, kFirstSlotOfSecondHalf - 1);
    Assign(other, kFirstSlotOfSecondHalf, 16383);
    const std::string address = "127.0.0.1 | " + other.port() + " | " + other.bus_port();
    EXPECT_EQ(node.store().Run("CLUSTER | MEET | " + address).text, "OK");
    for (RedisNode* each : {&node, &other}) {
      ExpectInfo(*each, "cluster_slots_ok:16384");
      ExpectInfo(*each, "cluster_state:ok");
    }
  }

  RedisNode other{ClusterSettings()};
};

TEST_F(TwoClusterNodes, GetTheHashesOfOneNodeOnly) {
  const std::string half = FirstHalfOfCreatedHashes();
  const std::string moved = KeyOf("/redfish/v1/Stale", false);
  const long long slot = node.store().Run(model::Command{"CLUSTER", "KEYSLOT", moved}).integer;
  EXPECT_EQ(node.store().Run(model::Command{"HSET", moved, "Name", "1"}).text,
            "MOVED " + std::to_string(slot) + " 127.0.0.1:" + other.port());

  ExpectFailureOn(node, create, kHashFailure);
  EXPECT_EQ(node.store().Dump(), half);
  EXPECT_EQ(other.store().Dump(), "");
  const Finished finished = OstrafelOn(node, update);
  EXPECT_EQ(finished.out, "");
  EXPECT_NE(finished.err, "");
  EXPECT_EQ(finished.status, 255);
  EXPECT_EQ(other.store().Dump(), "");
}

TEST_F(TwoClusterNodes, TakeAResourceWhoseKeyTheyOwn) {
  const std::string path = tree.Write("a.json", R"({"Name": "A"})");
  const std::string here = KeyOf("/r", true);
  const std::string there = KeyOf("/r", false);
  LoadOn(node, {"create", path, here});
  ExpectFailureOn(node, {"create", path, there}, kHashFailure);
  LoadOn(other, {"create", path, there});
  EXPECT_EQ(node.store().Dump(), "hash | " + here + " | Name | \"A\"\n");
  EXPECT_EQ(other.store().Dump(), "hash | " + there + " | Name | \"A\"\n");
}

// KEYS, by which a create finds the old tree, sees the keys of one node.
TEST_F(TwoClusterNodes, KeepWhatACreateOnTheOtherWouldRemove) {
  const std::string root = KeyOf("/r", true);
  const std::string here = KeyOf(root + "/Old", true);
  const std::string there = KeyOf(root + "/Old", false);
  (void)node.store().Run(model::Command{"HSET", here, "Name", "1"});
  (void)other.store().Run(model::Command{"HSET", there, "Name", "1"});
  LoadOn(node, {"create", tree.Write("a.json", R"({"Name": "A"})"), root});
  EXPECT_EQ(node.store().Dump(), "hash | " + root + " | Name | \"A\"\n");
  EXPECT_EQ(other.store().Dump(), "hash | " + there + " | Name | 1\n");
}

}  // namespace
