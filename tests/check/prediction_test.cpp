// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What is said of a tree beforehand, and what the program then does with it on a real server.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "check/check_output.h"
#include "check/survey.h"
#include "document/json_file.h"
#include "memory/server_copy.h"
#include "model/random_tree.h"
#include "support/program.h"
#include "support/scoped_setting.h"
#include "support/test_factor.h"
#include "system/file_capabilities.h"
#include "system/model_check.h"

namespace {

std::string TextDifference(const std::string& what, const std::string& real,
                           const std::string& predicted) {
  if (real == predicted) return "";
  return what + "\n  real:      " + testing::PrintToString(real) +
         "\n  predicted: " + testing::PrintToString(predicted) + "\n";
}

// The differences between a run and what was said of it.
std::string RunDifference(const std::string& action, const Finished& real,
                          const ostrafel::Played& predicted) {
  return TextDifference(action + ": status", std::to_string(real.status),
                        std::to_string(predicted.status)) +
         TextDifference(action + ": messages", real.err, predicted.messages);
}

// The survey of a tree: what an update leaves is printed nowhere.
ostrafel::Survey Look(const std::vector<std::string>& arguments) {
  ostrafel::KeptFiles kept_files;
  ostrafel::Documents.kept_files = &kept_files;
  ostrafel::Survey survey =
      ostrafel::SurveyTree({ostrafel::LoadAction::kCreate, arguments[1], arguments[2],
                            arguments.size() > 3 ? arguments[3] : "index.json"});
  ostrafel::Documents = {};
  return survey;
}

class PredictionTest : public ModelCheckedTest {
 protected:
  // The program goes straight to the server: what it sends is not looked at.
  PredictionTest() {
    RuntimeFiles files;
    files.unixsocket = ServerSocket();
    Publish(files);
    publishes_socket = false;
  }

  // Creates the tree of the arguments in an empty store and updates it. Returns how that differs
  // from what was said of it.
  std::string Compare(std::vector<std::string> arguments) {
    const Finished told = Check("--format=json", arguments);
    const Finished printed = Check("--print-store", arguments);
    const std::optional<ostrafel::Summary> summary = ostrafel::SummaryIn(told.out);
    const std::optional<ostrafel::Server> created = ostrafel::StoreIn(printed.out);
    if (!summary || !created) return "Output of ostrafel-check:\n" + told.err + printed.err;

    (void)store.Run("FLUSHALL");
    arguments[0] = "create";
    std::string difference = RunDifference("create", Run(arguments), summary->create);
    difference += StoreDifference(*created) +
                  TextDifference("print-store", summary->create.messages, printed.err) +
                  TextDifference("keys", std::to_string(store.Contents().size()),
                                 std::to_string(summary->keys));
    arguments[0] = "update";
    difference += RunDifference("update", Run(arguments), summary->update);
    return difference + CompareUpdate(arguments, *summary);
  }

  // The store after the update beside what the survey says of it.
  std::string CompareUpdate(const std::vector<std::string>& arguments,
                            const ostrafel::Summary& summary) {
    (summary.create.status == 0 ? successes : failures) += 1;
    if (summary.create.status != 0 || summary.update.status != 0 || user_opens_less) return "";
    const ostrafel::Survey survey = Look(arguments);
    if (survey.updated) losses += 1;
    return StoreDifference(survey.updated ? *survey.updated : survey.store);
  }

  Finished Run(const std::vector<std::string>& arguments) { return Ostrafel(arguments, Options()); }

  // What ostrafel-check does with such arguments, less their action.
  Finished Check(const std::string& option, std::vector<std::string> arguments) {
    arguments[0] = option;
    return RunProgram(CommandOf(OSTRAFEL_CHECK_PROGRAM, arguments), Options());
  }

  RunOptions Options() const {
    RunOptions options;
    if (user_opens_less) options.in_child = GiveUpFileCapabilities;
    return options;
  }

  // The store beside what was said of it.
  std::string StoreDifference(const ostrafel::Server& predicted) {
    return ostrafel::Difference(ostrafel::Dump(ostrafel::CopyOf(store.Contents())),
                                ostrafel::Dump(predicted));
  }

  void ExpectPredicted(const std::string& path, const std::string& uri = "/redfish/v1",
                       const std::string& file_name = "index.json") {
    EXPECT_EQ(Compare({"create", path, uri, file_name}), "") << path;
  }

  // Compares a tree, and shows the smallest one that makes a difference, if there is any.
  void ExpectPredicted(const model::RandomTreeOptions& options, model::Tree random_tree) {
    const auto play = [&](const model::Sequence& candidate) {
      return Play(candidate,
                  [&](const std::vector<std::string>& arguments) { return Compare(arguments); });
    };
    const model::Sequence sequence = {{"create", options.uri, std::move(random_tree)}};
    if (!play(sequence).empty()) FAIL() << Explain(sequence, play);
  }

  unsigned successes = 0;        // the trees so far that can be created
  unsigned failures = 0;         // those that cannot
  bool user_opens_less = false;  // the programs may open only what their user may
  unsigned losses = 0;           // those of which an update leaves something else
};

class RandomTrees : public PredictionTest {};
class Examples : public PredictionTest {};
class Mockups : public PredictionTest {};
class FaultyTrees : public PredictionTest {};

TEST_F(RandomTrees, Small) {
  for (std::uint64_t seed = 0; seed < 60 * TestFactor(); ++seed) {
    std::mt19937_64 generator(9500000 + seed);
    model::RandomTreeOptions options;
    options.uri = seed % 4 == 0 ? "/redfish/" : "/redfish";
    ASSERT_NO_FATAL_FAILURE(ExpectPredicted(options, model::RandomTree(generator, options)))
        << seed;
  }
  EXPECT_GT(successes, 30U);
}

TEST_F(RandomTrees, WithFaults) {
  Include("a.json", R"({"A": {"x": [1, {"y": 2}]}, "B": "included", "@odata.id": "/redfish/inc"})");
  Include("c.xml", "<x/>");
  Include("array.json", "[1, 2, 3]");
  model::RandomTreeOptions options;
  options.include_files = {"a.json", "a.json", "c.xml", "array.json", "none.json"};
  options.include_one_in = 10;
  options.bad_id_one_in = 20;
  options.folders = 5;
  const std::vector<std::string> broken = {"", "{", "[1]", "\"x\"", "{\"A\": 1e999}"};
  for (std::uint64_t seed = 0; seed < 60 * TestFactor(); ++seed) {
    std::mt19937_64 generator(9600000 + seed);
    model::Tree random_tree = model::RandomTree(generator, options);
    if (seed % 6 == 0) {
      random_tree.back().document = broken[static_cast<std::size_t>(seed / 6 % broken.size())];
    }
    ASSERT_NO_FATAL_FAILURE(ExpectPredicted(options, std::move(random_tree))) << seed;
  }
  EXPECT_GT(successes, 10U);
  EXPECT_GT(failures, 10U);
}

TEST_F(RandomTrees, WithMoreThanABatchHolds) {
  // The server answers a search of a compact hash at once, but of any other in pages.
  const ScopedSetting compact_hashes(&store, "hash-max-listpack-entries", "10000");
  model::RandomTreeOptions options;
  options.bulk = 2500;
  options.folders = 4;
  for (std::uint64_t seed = 0; seed < 8 * TestFactor(); ++seed) {
    std::mt19937_64 generator(9700000 + seed);
    options.bad_id_one_in = seed % 2 == 0 ? 0 : 400;
    ASSERT_NO_FATAL_FAILURE(ExpectPredicted(options, model::RandomTree(generator, options)))
        << seed;
  }
  EXPECT_GT(losses, 0U);
}

TEST_F(Examples, AreLoadedAsPredicted) {
  const std::string examples = OSTRAFEL_SOURCE_DIR "/examples/";
  std::filesystem::copy(examples + "www", kIncludeDirectory,
                        std::filesystem::copy_options::recursive);
  for (const char* name : {"rackmount", "rackmount-update"}) ExpectPredicted(examples + name);
}

TEST_F(Mockups, AreLoadedAsPredicted) {
  const char* folder = std::getenv("REDFISH_MOCKUPS");
  if (folder == nullptr) GTEST_SKIP() << "REDFISH_MOCKUPS names no folder of Redfish trees";
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.is_directory()) ExpectPredicted(entry.path().string());
  }
  EXPECT_GT(successes, 0U);
}

TEST_F(FaultyTrees, AFolderWithoutFiles) { ExpectPredicted(tree.path()); }

TEST_F(FaultyTrees, NamesOfAnyBytes) {
  for (const char* name : {"\xff\xfe\x80", "\x01\x1b[2J\x7f", "line\nend\r", " ", "*", "\\", "\"",
                           "\xed\xb2\x80", "\xf0\x9f\x99\x82", "~0", "&&"}) {
    tree.Write(std::string(name) + "/index.json", R"({"A": {"x": [1, {"y": "\udc00?"}]}})");
  }
  ExpectPredicted(tree.path());
  const std::string bad = tree.Write(
      "\xff"
      "bad/index.json",
      "[\n]\n");
  ExpectPredicted(tree.path());
  ExpectPredicted(bad);
}

TEST_F(FaultyTrees, ASingleFile) {
  ExpectPredicted(tree.Write("a.JSON", R"({"@odata.id": "/x", "A": 1e300})"), "/r/");
  ExpectPredicted(tree.Write("b.json", "\xEF\xBB\xBF{\"A\": 12345678901234567890}"));
  EXPECT_EQ(failures, 1U);
}

TEST_F(FaultyTrees, OtherNamesOfFiles) {
  tree.Write("index.json", R"({"A": 1})");
  tree.Write("a/other.json", R"({"B": 1})");
  ExpectPredicted(tree.path(), "/r", "other.json");
  ExpectPredicted(tree.path(), "/r", "other");
}

TEST_F(FaultyTrees, AKeyThatIsAHashAndAList) {
  tree.Write("index.json", R"({"A": {"@odata.id": "&&/r/B", "x": 1}, "B": [1, 2]})");
  ExpectPredicted(tree.path(), "/r");
  EXPECT_EQ(failures, 1U);
}

TEST_F(FaultyTrees, FilesThatCannotBeOpened) {
  user_opens_less = true;
  ASSERT_EQ(chmod(tree.Write("a/index.json", "{}").c_str(), 0), 0);
  ExpectPredicted(tree.path(), "/r");
  ASSERT_EQ(chmod(tree.MakeFolder("b").c_str(), 0), 0);
  ExpectPredicted(tree.path(), "/r");
  ASSERT_EQ(chmod(tree.path("b").c_str(), 0700), 0);
  EXPECT_EQ(failures, 2U);
}

// When somebody mounts something meanwhile, the kernel may go a way again and count the links of it
// twice, so that its limit comes early in one run and not in the other: they are compared again.
TEST_F(FaultyTrees, ALinkToItsOwnFolder) {
  tree.Write("top/index.json", R"({"A": 1})");
  std::filesystem::create_directory_symlink(".", tree.path("top/loop"));
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  std::string difference;
  do {
    difference = Compare({"create", tree.path("top"), "/r"});
  } while (!difference.empty() && std::chrono::steady_clock::now() < deadline);
  EXPECT_EQ(difference, "");
}

}  // namespace
