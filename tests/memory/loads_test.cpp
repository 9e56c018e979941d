// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Whole loads, by the program into a real server and by LoadTree into a store in memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "base/message.h"
#include "loading/tree_loading.h"
#include "memory/memory_server.h"
#include "memory/server_copy.h"
#include "model/random_tree.h"
#include "store/store_state.h"
#include "support/scoped_setting.h"
#include "support/test_factor.h"
#include "system/model_check.h"

namespace {

struct Ending {
  int status;
  std::string err;
};

// What the program does with these arguments, with the store in memory in place of the server.
Ending PlayLoad(ostrafel::Server* server, const std::vector<std::string>& arguments) {
  Ending ending = {0, ""};
  ostrafel::Messages.collector = &ending.err;
  ostrafel::Store.emplace();
  const auto action =
      arguments[0] == "create" ? ostrafel::LoadAction::kCreate : ostrafel::LoadAction::kUpdate;
  const auto outcome =
      ostrafel::LoadTree(server, {action, arguments[1], arguments[2], "index.json"});
  ostrafel::PrintLoadEnd(outcome);
  ostrafel::Messages.collector = nullptr;
  ending.status = outcome.end == ostrafel::LoadEnd::kDone ? 0 : 255;
  return ending;
}

class LoadsInMemory : public ModelCheckedTest {
 protected:
  // The program goes straight to the server: what it sends is not looked at.
  LoadsInMemory() {
    RuntimeFiles files;
    files.unixsocket = ServerSocket();
    Publish(files);
    publishes_socket = false;
  }

  // Runs both on what the server holds. Returns what differs afterwards.
  std::string CompareStores(const std::vector<std::string>& arguments) {
    ostrafel::Server server = ostrafel::CopyOf(store.Contents());
    const Finished real = Ostrafel(arguments);
    const Ending played = PlayLoad(&server, arguments);
    std::string difference;
    if (real.status != played.status) {
      difference += "the status is " + std::to_string(real.status) + " and in memory " +
                    std::to_string(played.status) + "\n";
    }
    if (real.err != played.err) {
      difference += "the messages are\n" + real.err + "and in memory\n" + played.err;
    }
    failures += real.status == 0 ? 0 : 1;
    return difference + ostrafel::Difference(ostrafel::Dump(ostrafel::CopyOf(store.Contents())),
                                             ostrafel::Dump(server));
  }

  void RunBoth(const std::vector<std::string>& arguments) {
    EXPECT_EQ(CompareStores(arguments), "");
  }

  // Plays the sequence, and shows the smallest one that makes a difference, if there is any.
  void PlayInBoth(
      const model::Sequence& sequence, const std::function<void()>& before_each_run = [] {}) {
    const auto play = [&](const model::Sequence& candidate) {
      return Play(candidate, [&](const std::vector<std::string>& arguments) {
        before_each_run();
        return CompareStores(arguments);
      });
    };
    if (!play(sequence).empty()) FAIL() << Explain(sequence, play);
  }

  // Puts texts, lists and hashes in the way, at three in seven of the keys that there are.
  void PutOtherTypes(std::uint64_t seed) {
    for (const auto& entry : store.Contents()) {
      const std::string& key = entry.first;
      std::seed_seq seeds(key.begin(), key.end());
      const std::uint64_t kind = (std::mt19937_64(seeds)() ^ seed) % 7;
      if (kind > 2) continue;
      (void)store.Run(model::Command{"DEL", key});
      if (kind == 0) (void)store.Run(model::Command{"SET", key, "text"});
      if (kind == 1) (void)store.Run(model::Command{"RPUSH", key, "1", "&&Object x"});
      if (kind == 2) (void)store.Run(model::Command{"HSET", key, "f", "v"});
    }
  }

  unsigned failures = 0;  // the runs so far that did not end with status 0
};

class RandomRuns : public LoadsInMemory {};
class Examples : public LoadsInMemory {};
class Mockups : public LoadsInMemory {};

// A create, then updates and creates of other trees for the same keys.
model::Sequence RandomSequence(std::uint64_t seed, const model::RandomTreeOptions& options) {
  std::mt19937_64 generator(seed);
  model::Sequence sequence;
  for (int run = 0; run < 4; ++run) {
    model::Tree tree = model::RandomTree(generator, options);
    const char* action = run == 0 || generator() % 6 == 0 ? "create" : "update";
    sequence.push_back({action, options.uri, std::move(tree)});
  }
  return sequence;
}

TEST_F(RandomRuns, OfSmallTrees) {
  for (std::uint64_t seed = 0; seed < 20 * TestFactor(); ++seed) {
    model::RandomTreeOptions options;
    options.uri = seed % 4 == 0 ? "/redfish/" : "/redfish";
    ASSERT_NO_FATAL_FAILURE(PlayInBoth(RandomSequence(9000000 + seed, options))) << seed;
  }
}

TEST_F(RandomRuns, OfTreesWithFaults) {
  Include("a.json", R"({"A": {"x": [1, {"y": 2}]}, "B": "included", "@odata.id": "/redfish/inc"})");
  Include("c.xml", "<x/>");
  Include("array.json", "[1, 2, 3]");
  model::RandomTreeOptions options;
  options.include_files = {"a.json", "a.json", "c.xml", "array.json", "none.json"};
  options.bad_id_one_in = 20;
  options.folders = 4;
  const std::vector<std::string> broken = {"", "{", "[1]", "\"x\"", "{\"A\": 1e999}"};
  for (std::uint64_t seed = 0; seed < 20 * TestFactor(); ++seed) {
    model::Sequence sequence = RandomSequence(9100000 + seed, options);
    model::TreeFolder& last = sequence[2].tree.back();
    if (seed % 3 == 0) last.document = broken[static_cast<std::size_t>(seed % broken.size())];
    ASSERT_NO_FATAL_FAILURE(PlayInBoth(sequence)) << seed;
  }
  EXPECT_GT(failures, 10U);
}

TEST_F(RandomRuns, WithFullBatches) {
  // The server answers a search of a compact hash at once, but of any other in pages.
  const ScopedSetting compact_hashes(&store, "hash-max-listpack-entries", "10000");
  model::RandomTreeOptions options;
  options.bulk = 2500;
  options.folders = 4;
  for (std::uint64_t seed = 0; seed < 3 * TestFactor(); ++seed) {
    ASSERT_NO_FATAL_FAILURE(PlayInBoth(RandomSequence(9200000 + seed, options))) << seed;
  }
}

TEST_F(RandomRuns, OverOtherTypes) {
  for (std::uint64_t seed = 0; seed < 15 * TestFactor(); ++seed) {
    const model::Sequence sequence = RandomSequence(9300000 + seed, {});
    ASSERT_NO_FATAL_FAILURE(PlayInBoth(sequence, [&] { PutOtherTypes(seed); })) << seed;
  }
  EXPECT_GT(failures, 5U);
}

TEST_F(Examples, AreLoadedAndUpdatedAlike) {
  const std::string examples = OSTRAFEL_SOURCE_DIR "/examples/";
  std::filesystem::copy(examples + "www", kIncludeDirectory,
                        std::filesystem::copy_options::recursive);
  for (const char* action : {"create", "update"}) {
    for (const char* name : {"rackmount", "rackmount-update", "rackmount"}) {
      RunBoth({action, examples + name, "/redfish/v1"});
    }
  }
}

TEST_F(Mockups, AreLoadedAndUpdatedAlike) {
  const char* folder = std::getenv("REDFISH_MOCKUPS");
  if (folder == nullptr) GTEST_SKIP() << "REDFISH_MOCKUPS names no folder of Redfish trees";
  std::vector<std::string> trees;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.is_directory()) trees.push_back(entry.path().string());
  }
  ASSERT_FALSE(trees.empty());
  std::sort(trees.begin(), trees.end());
  // Each over itself, and over the one before.
  for (const char* action : {"create", "update"}) {
    for (const std::string& mockup : trees) {
      RunBoth({action, mockup, "/redfish/v1"});
      RunBoth({"update", mockup, "/redfish/v1"});
    }
  }
}

}  // namespace
