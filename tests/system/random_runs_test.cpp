// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Random trees, created and updated in random sequences, beside the model.
#include <cstdint>
#include <random>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "model/random_tree.h"
#include "support/scoped_setting.h"
#include "support/test_factor.h"
#include "system/model_check.h"

namespace {

class RandomRuns : public ModelCheckedTest {
 protected:
  // Plays this many sequences, or OSTRAFEL_TEST_SEEDS times as many.
  void RunSequences(std::uint64_t first_seed, std::uint64_t count,
                    const model::RandomTreeOptions& options) {
    count *= TestFactor();
    for (std::uint64_t seed = first_seed; seed < first_seed + count; ++seed) {
      ASSERT_NO_FATAL_FAILURE(RunSequence(seed, options, 4));
    }
  }

  void RunSequence(std::uint64_t seed, const model::RandomTreeOptions& options, int runs) {
    const model::Sequence sequence = RandomSequence(seed, options, runs);
    if (Play(sequence).empty()) return;
    const auto play = [&](const model::Sequence& candidate) { return Play(candidate); };
    FAIL() << "seed " << seed << "\n" << Explain(sequence, play);
  }

  // A create, then some updates and creates of other trees for the same keys.
  static model::Sequence RandomSequence(std::uint64_t seed, const model::RandomTreeOptions& options,
                                        int runs) {
    std::mt19937_64 generator(seed);
    model::Sequence sequence;
    for (int run = 0; run < runs; ++run) {
      model::Tree random_tree = model::RandomTree(generator, options);
      const std::string action = run == 0 || generator() % 6 == 0 ? "create" : "update";
      sequence.push_back({action, options.uri, std::move(random_tree)});
    }
    return sequence;
  }

  // Makes one key in seven a text, one a list and one a hash, whatever it holds. What becomes of a
  // key depends on its name and the seed alone, so that it stays the same in a smaller sequence.
  void PutOtherTypes(std::uint64_t seed) {
    for (const auto& entry : store.Contents()) {
      const std::string& key = entry.first;
      std::vector<std::uint32_t> seeds = {static_cast<std::uint32_t>(seed)};
      for (const char c : key) seeds.push_back(static_cast<unsigned char>(c));
      std::seed_seq seed_sequence(seeds.begin(), seeds.end());
      const std::uint64_t kind = std::mt19937_64(seed_sequence)() % 7;
      if (kind > 2) continue;
      (void)store.Run(model::Command{"DEL", key});
      if (kind == 0) (void)store.Run(model::Command{"SET", key, "text"});
      if (kind == 1) (void)store.Run(model::Command{"RPUSH", key, "1", "&&Object x"});
      if (kind == 2) (void)store.Run(model::Command{"HSET", key, "f", "v"});
    }
  }
};

TEST_F(RandomRuns, OfSmallTrees) { RunSequences(1000000, 40, {}); }

TEST_F(RandomRuns, WithIdsThatAreNoStrings) {
  model::RandomTreeOptions options;
  options.bad_id_one_in = 15;
  options.folders = 3;
  RunSequences(2000000, 20, options);
}

TEST_F(RandomRuns, WithFullBatches) {
  // A search of a compact hash takes one answer, of any other some for every hundred fields; there
  // is one for every member.
  const ScopedSetting compact_hashes(&store, "hash-max-listpack-entries", "10000");
  model::RandomTreeOptions options;
  options.bulk = 2500;
  options.folders = 4;
  RunSequences(3000000, 3, options);
}

TEST_F(RandomRuns, WithInclusions) {
  model::RandomTreeOptions options;
  options.include_files = {"a.json", "b.json", "c.xml", "array.json", "none.json"};
  options.include_one_in = 3;
  options.folders = 3;
  Include("a.json", R"({"A": {"x": [1, {"y": 2}]}, "B": "included", "@odata.id": "/redfish/inc"})");
  Include("b.json", R"({"&&File": 3, "C": [], "&&ETag": "W/\"2\""})");
  Include("c.xml", "<x/>");
  Include("array.json", "[1, 2, 3]");
  RunSequences(4000000, 15, options);
}

TEST_F(RandomRuns, BelowAUriWithASlashAtItsEnd) {
  model::RandomTreeOptions options;
  options.uri = "/redfish/";
  RunSequences(5000000, 10, options);
}

TEST_F(RandomRuns, AgainstAStoreThatHoldsOtherTypes) {
  const std::uint64_t first_seed = 5000;
  for (std::uint64_t seed = first_seed; seed < first_seed + 15 * TestFactor(); ++seed) {
    std::mt19937_64 generator(seed);
    const model::RandomTreeOptions options;
    const model::Tree random_tree = model::RandomTree(generator, options);
    const model::Sequence sequence = {{"create", options.uri, random_tree},
                                      {"update", options.uri, random_tree},
                                      {"create", options.uri, random_tree}};
    const auto compare = [&](const std::vector<std::string>& arguments) {
      PutOtherTypes(seed);
      return Compare(arguments);
    };
    const auto play = [&](const model::Sequence& candidate) { return Play(candidate, compare); };
    if (play(sequence).empty()) continue;
    FAIL() << "PutOtherTypes(" << seed << ") before every run\n" << Explain(sequence, play);
  }
}

// A rule that does not hold: that an update never removes a key.
TEST_F(RandomRuns, AFailureIsShownAsTheFewestRunsAndFilesThatMakeIt) {
  const auto compare = [&](const std::vector<std::string>& arguments) {
    const model::Store before = store.Contents();
    std::string difference = Compare(arguments);
    if (arguments.front() == "create") return difference;
    const model::Store after = store.Contents();
    for (const auto& entry : before) {
      if (after.count(entry.first) == 0) difference += "removed: " + entry.first + "\n";
    }
    return difference;
  };
  const auto play = [&](const model::Sequence& sequence) { return Play(sequence, compare); };
  // Most sequences break the rule.
  model::RandomTreeOptions options;
  options.folders = 2;
  options.depth = 3;
  model::Sequence sequence;
  for (std::uint64_t seed = 6000000; seed < 6000020 && play(sequence).empty(); ++seed) {
    sequence = RandomSequence(seed, options, 3);
  }
  ASSERT_NE(play(sequence), "");
  const std::string message = Explain(sequence, play, std::chrono::minutes(10));
  const std::regex expected(
      "The smallest sequence found in [0-9]+ attempts:\n"
      "Ostrafel (create|update) TREE /[a-z]\n"
      "  TREE/index.json: \\{[^\n]{1,40}\\}\n"
      "Ostrafel update TREE /[a-z]\n"
      "  TREE/index.json: \\{[^\n]{1,40}\\}\n"
      "What differs after its last run:\n"
      "removed: [^\n]{1,20}\n");
  EXPECT_TRUE(std::regex_match(message, expected)) << message;
}

}  // namespace
