// Random trees, created and updated in random sequences, beside the model.
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "model/random_tree.h"
#include "system/model_check.h"

namespace {

class RandomRuns : public ModelCheckedTest {
 protected:
  // Plays this many sequences, or OSTRAFEL_TEST_SEEDS times as many.
  void RunSequences(std::uint64_t first_seed, std::uint64_t count,
                    const model::RandomTreeOptions& options) {
    const char* factor = std::getenv("OSTRAFEL_TEST_SEEDS");
    if (factor != nullptr) count *= std::stoull(factor);
    for (std::uint64_t seed = first_seed; seed < first_seed + count; ++seed) {
      ASSERT_NO_FATAL_FAILURE(RunSequence(seed, options, 4));
    }
  }

  // One sequence: a create, then some updates and creates of other trees for the same keys.
  void RunSequence(std::uint64_t seed, const model::RandomTreeOptions& options, int runs) {
    std::mt19937_64 generator(seed);
    (void)store.Run("FLUSHALL");
    for (int run = 0; run < runs; ++run) {
      const TempDirectory directory;
      model::WriteRandomTree(generator, directory.path(), options);
      const std::string action = run == 0 || generator() % 6 == 0 ? "create" : "update";
      ASSERT_NO_FATAL_FAILURE(RunBoth({action, directory.path(), options.uri}))
          << "seed " << seed << ", run " << run << ", " << action;
    }
  }
};

TEST_F(RandomRuns, OfSmallTrees) { RunSequences(1000000, 60, {}); }

TEST_F(RandomRuns, WithIdsThatAreNoStrings) {
  model::RandomTreeOptions options;
  options.bad_id_one_in = 15;
  options.folders = 3;
  RunSequences(2000000, 40, options);
}

TEST_F(RandomRuns, WithFullBatches) {
  // A search of a compact hash takes one answer, of any other some for every hundred fields; there
  // is one for every member.
  (void)store.Run("CONFIG | SET | hash-max-listpack-entries | 10000");
  model::RandomTreeOptions options;
  options.bulk = 2500;
  options.folders = 4;
  RunSequences(3000000, 6, options);
  (void)store.Run("CONFIG | SET | hash-max-listpack-entries | 128");
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
  RunSequences(4000000, 30, options);
}

TEST_F(RandomRuns, BelowAUriWithASlashAtItsEnd) {
  model::RandomTreeOptions options;
  options.uri = "/redfish/";
  RunSequences(5000000, 20, options);
}

TEST_F(RandomRuns, AgainstAStoreThatHoldsOtherTypes) {
  for (std::uint64_t seed = 5000; seed < 5030; ++seed) {
    const TempDirectory directory;
    std::mt19937_64 generator(seed);
    model::WriteRandomTree(generator, directory.path(), {});
    ASSERT_NO_FATAL_FAILURE(RunBoth({"create", directory.path(), "/redfish"}));
    // One key in seven now holds a text, one a list, one a hash, whatever it held before.
    for (const auto& entry : store.Contents()) {
      const std::string& key = entry.first;
      const std::uint64_t kind = generator() % 7;
      if (kind > 2) continue;
      (void)store.Run(model::Command{"DEL", key});
      if (kind == 0) (void)store.Run(model::Command{"SET", key, "text"});
      if (kind == 1) (void)store.Run(model::Command{"RPUSH", key, "1", "&&Object x"});
      if (kind == 2) (void)store.Run(model::Command{"HSET", key, "f", "v"});
    }
    ASSERT_NO_FATAL_FAILURE(RunBoth({"update", directory.path(), "/redfish"})) << "seed " << seed;
  }
}

}  // namespace
