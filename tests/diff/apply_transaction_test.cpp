// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// --apply beside other clients: readers see the old store or the new one, and what writers do
// meanwhile is not lost.
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "diff/apply_fixture.h"

namespace {

const std::string kOld = R"({"A": 1, "B": {"x": 1}, "L": [1, 2, {"y": 1}], "Gone": {"z": 1}})";
const std::string kNew = R"({"A": 2, "B": {"x": 2}, "L": [1, 3, {"y": 2}], "New": {"z": 1}})";

class Transactions : public ApplyTest {
 protected:
  // Puts the store into the state before.
  void Restore() { store.Fill(old_store); }

  std::size_t FlightsOfAnAttempt() {
    plan = nullptr;
    Restore();
    EXPECT_EQ(RecordedDiff(apply).status, 0);
    EXPECT_EQ(store.Dump(), model::Dump(new_store));
    Restore();
    return recording.flights.size();
  }

  const std::string old_file = tree.Write("old.json", kOld);
  const std::string new_file = tree.Write("new.json", kNew);
  const std::vector<std::string> apply = {"--apply", new_file, "/r"};
  const model::Store old_store = After("create", {}, old_file, "/r");
  const model::Store new_store = After("create", {}, new_file, "/r");
};

// What these keys hold at one moment.
model::Store Look(TestStore* reader, const std::set<std::string>& keys) {
  (void)reader->Run("MULTI");
  for (const std::string& key : keys) {
    (void)reader->Run(model::Command{"HGETALL", key});
    (void)reader->Run(model::Command{"LRANGE", key, "0", "-1"});
  }
  const std::vector<model::Reply> replies = reader->Run("EXEC").elements;
  model::Store seen;
  std::size_t i = 0;
  for (const std::string& key : keys) {
    const std::vector<model::Reply>& pairs = replies.at(i++).elements;
    model::Hash hash;
    for (std::size_t k = 0; k + 1 < pairs.size(); k += 2) hash[pairs[k].text] = pairs[k + 1].text;
    model::List list;
    for (const model::Reply& element : replies.at(i++).elements) list.push_back(element.text);
    if (!hash.empty()) seen[key].value = hash;
    if (!list.empty()) seen[key].value = list;
  }
  return seen;
}

TEST_F(Transactions, ShowReadersTheOldStoreOrTheNewOne) {
  std::string members;
  for (int i = 0; i < 40; ++i) {
    const std::string number = std::to_string(i);
    members += ", \"M" + number + "\": {\"x\": [" + number + ", {\"y\": 1}]}";
  }
  const std::vector<std::string> files = {
      tree.Write("first.json", "{\"A\": 1, \"N\": {\"z\": 1}" + members + "}"),
      tree.Write("second.json", "{\"A\": 2, \"M7\": [1, 2], \"O\": [1], \"M9\": {\"x\": 1}}")};
  std::set<std::string> keys;
  std::vector<model::Store> stores;
  for (const std::string& file : files) {
    stores.push_back(After("create", {}, file, "/r"));
    for (const auto& [key, value] : stores.back()) keys.insert(key);
  }
  std::atomic<bool> is_done{false};
  std::atomic<int> looks{0};
  std::atomic<int> mixtures{0};
  std::thread reader([&] {
    TestStore connection(ServerSocket());
    while (!is_done) {
      const model::Store seen = Look(&connection, keys);
      if (!(seen == stores[0]) && !(seen == stores[1])) ++mixtures;
      ++looks;
    }
  });
  for (std::size_t run = 0; run < 10; ++run) {
    const Finished finished = Diff({"--apply", files[run % 2], "/r"});
    EXPECT_EQ(finished.status, 0) << finished.err;
  }
  const int before = looks;
  while (looks < before + 2) std::this_thread::yield();
  is_done = true;
  reader.join();
  EXPECT_EQ(mixtures, 0);
}

TEST_F(Transactions, AreTriedAgainWhenAnotherClientChangesAKeyOfTheirs) {
  const std::size_t flights = FlightsOfAnAttempt();
  const std::vector<std::string> changes = {"HSET | /r | A | 3",  "HSET | /r | Z | 3",
                                            "DEL | /r",           "LSET | &&/r/L | 0 | x",
                                            "SET | &&/r/New | x", "FLUSHALL"};
  for (const std::string& change : changes) {
    for (std::size_t flight = 0; flight < flights; ++flight) {
      SCOPED_TRACE(change + " before flight " + std::to_string(flight));
      Restore();
      plan = [&](Recorder& recorder) { recorder.Before(flight, [&] { (void)store.Run(change); }); };
      const Finished finished = RecordedDiff(apply);
      ASSERT_EQ(finished.err, "");
      ASSERT_EQ(finished.status, 0);
      ASSERT_EQ(store.Dump(), model::Dump(new_store));
    }
  }
}

TEST_F(Transactions, AreGivenUpAfterThreeRetriesWithNothingChanged) {
  const std::size_t flights = FlightsOfAnAttempt();
  int changes = 0;
  plan = [&](Recorder& recorder) {
    for (std::size_t flight = flights - 1; flight < 10 * flights; ++flight) {
      recorder.Before(flight, [&] {
        ++changes;
        (void)store.Run("HSET | /r | A | " + std::to_string(100 + changes));
      });
    }
  };
  const Finished finished = RecordedDiff(apply);
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.err,
            "ostrafel-diff: others have changed the store each time that it was to be changed\n"
            "ostrafel-diff: the store was not changed\n");
  EXPECT_EQ(finished.status, 2);
  const auto commands = model::CommandsOf(recording.flights);
  EXPECT_EQ(std::count_if(commands.begin(), commands.end(),
                          [](const auto& command) { return command.front() == "WATCH"; }),
            1 + 3);
  model::Store expected = old_store;
  std::get<model::Hash>(expected["/r"].value)["A"] = std::to_string(100 + changes);
  EXPECT_EQ(StoreDifference(store.Contents(), expected), "");
}

TEST_F(Transactions, AreNoneOfAStoreThatDoesNotHoldStill) {
  Restore();
  plan = [&](Recorder& recorder) {
    for (std::size_t flight = 0; flight < 100; ++flight) {
      recorder.Before(flight, [this, flight] {
        (void)store.Run("SET | /r/" + std::to_string(flight) + " | x");
      });
    }
  };
  const Finished finished = RecordedDiff(apply);
  EXPECT_EQ(finished.out, "");
  EXPECT_NE(finished.err.find("changed while it was read, again and again"), std::string::npos)
      << finished.err;
  EXPECT_EQ(finished.status, 2);
  EXPECT_TRUE(Writes().empty());
}

TEST_F(Transactions, CountOnceWhatAnInterruptedAttemptDidNotChange) {
  Restore();
  const std::string whole = Diff(apply).out;
  const std::size_t flights = FlightsOfAnAttempt();
  plan = [&](Recorder& recorder) {
    recorder.Before(flights - 1, [&] { (void)store.Run("HSET | /r | A | 3"); });
  };
  EXPECT_EQ(RecordedDiff(apply).out, whole);
}

TEST_F(Transactions, KeepWhatOthersWriteElsewhereMeanwhile) {
  const std::size_t flights = FlightsOfAnAttempt();
  plan = [&](Recorder& recorder) {
    for (std::size_t flight = 0; flight < flights; ++flight) {
      recorder.Before(flight, [&] { (void)store.Run("RPUSH | /elsewhere | x"); });
    }
  };
  EXPECT_EQ(RecordedDiff(apply).status, 0);
  model::Store expected = new_store;
  expected["/elsewhere"].value = model::List(flights, "x");
  EXPECT_EQ(StoreDifference(store.Contents(), expected), "");
}

TEST_F(Transactions, OfACreateThatWouldFailAreNone) {
  Restore();
  const std::string broken = tree.Write("broken/b.json", "{");
  const Finished finished = RecordedDiff({"--apply", tree.path("broken"), "/r", "b.json"});
  EXPECT_EQ(finished.out, "");
  EXPECT_NE(finished.err.find("a create of"), std::string::npos) << finished.err;
  EXPECT_EQ(finished.status, 2);
  EXPECT_TRUE(Writes().empty());
  EXPECT_EQ(store.Dump(), model::Dump(old_store));
}

class Batches : public ApplyTest {
 protected:
  Batches() {
    for (const std::string name : {"", "a/", "b/", "c/"}) {
      tree.Write(name + "index.json", R"({"A": [1, {"x": 1}], "B": {"y": 2}})");
    }
  }

  // What is stored of the resource and its parts.
  std::string StoredOf(const std::string& key) {
    model::Store part;
    for (const auto& [name, value] : store.Contents()) {
      if (name == key || name.rfind("&&" + key + "/", 0) == 0) part[name] = value;
    }
    return model::Dump(part);
  }

  // Has so many resources changed in a transaction, and another client change a key of the last
  // resource before each EXEC but the first.
  void Disturb(std::size_t batch, std::size_t first) {
    plan = [this, first](Recorder& recorder) {
      for (std::size_t flight = first; flight < 100; ++flight) {
        recorder.Before(flight, [this, flight] {
          (void)store.Run("HSET | /r/c | A | " + std::to_string(flight));
        });
      }
    };
    finished = RecordedDiff({"--apply", "--batch=" + std::to_string(batch), tree.path(), "/r"});
  }

  Finished finished;
};

TEST_F(Batches, ChangeSoManyResourcesInATransaction) {
  const std::map<std::string, std::string> ends = {
      {"1", " in 4 transactions: each resource at once, but not all of them\n"},
      {"3", " in 2 transactions: each resource at once, but not all of them\n"},
      {"4", "\n"},
      {"99999", "\n"}};
  for (const auto& [batch, end] : ends) {
    (void)store.Run("FLUSHALL");
    const Finished applied = Diff({"--apply", "--batch", batch, tree.path(), "/r"});
    EXPECT_EQ(applied.out, "changed 16 keys, 24 records" + end) << applied.err;
    EXPECT_EQ(applied.status, 0);
    ExpectNothingLeft({tree.path(), "/r"});
  }
}

TEST_F(Batches, AreWholeWhenTheLastIsDisturbed) {
  Load({"create", tree.path(), "/r"});
  const std::string whole = StoredOf("/r/b");
  (void)store.Run("FLUSHALL");
  ASSERT_EQ(RecordedDiff({"--apply", "--batch=1", tree.path(), "/r"}).status, 0);
  const std::size_t exec = ExecFlight();

  (void)store.Run("FLUSHALL");
  Disturb(1, exec + 1);
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.err,
            "ostrafel-diff: others have changed the store each time that it was to be changed\n"
            "ostrafel-diff: the store was changed: 12 keys in 3 transactions\n");
  EXPECT_EQ(StoredOf("/r/b"), whole);
  EXPECT_EQ(store.Run("HLEN | /r/c").integer, 1);
  EXPECT_EQ(store.Run("EXISTS | &&/r/c/A").integer, 0);
}

TEST_F(Batches, AreAskedForWhenTooManyKeysDiffer) {
  std::string document = R"({"A": 1)";
  for (int i = 0; i < 10000; ++i) document += ",\"O" + std::to_string(i) + "\":{\"x\":1}";
  tree.Write("big/index.json", document + "}");
  const Finished refused = RecordedDiff({"--apply", tree.path(), "/r"});
  EXPECT_EQ(refused.out, "");
  EXPECT_EQ(refused.err,
            "ostrafel-diff: 10,017 keys differ, more than one transaction changes (10,000): see "
            "--batch\nostrafel-diff: the store was not changed\n");
  EXPECT_EQ(refused.status, 2);
  EXPECT_TRUE(Writes().empty());
  EXPECT_EQ(store.Run("DBSIZE").integer, 0);
  // The large resource is not parted, nor are others with it.
  const Finished applied = Diff({"--apply", "--batch=99", tree.path(), "/r"});
  EXPECT_EQ(applied.out,
            "changed 10,017 keys, 20,025 records in 3 transactions: each resource at once, but not "
            "all of them\n")
      << applied.err;
  EXPECT_EQ(store.Run("DBSIZE").integer, 10017);
}

}  // namespace
