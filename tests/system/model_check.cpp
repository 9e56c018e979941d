// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "system/model_check.h"

#include <gtest/gtest-spi.h>

#include <algorithm>
#include <iterator>
#include <sstream>

#include "model/endpoint.h"
#include "model/run_model.h"

namespace {

constexpr std::size_t kLinesShown = 12;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// The lines of one text that the other lacks, each after this mark.
std::string LinesOnlyIn(std::vector<std::string> lines, std::vector<std::string> others,
                        const std::string& mark) {
  std::sort(lines.begin(), lines.end());
  std::sort(others.begin(), others.end());
  std::vector<std::string> missing;
  std::set_difference(lines.begin(), lines.end(), others.begin(), others.end(),
                      std::back_inserter(missing));
  std::string text;
  for (std::size_t i = 0; i < std::min(missing.size(), kLinesShown); ++i) {
    text += "  " + mark + missing[i] + "\n";
  }
  if (missing.size() > kLinesShown) {
    text += "  " + mark + "... " + std::to_string(missing.size() - kLinesShown) + " more\n";
  }
  return text;
}

// What is stored and what should be; empty when they are equal.
std::string StoreDifference(const std::string& stored, const std::string& expected) {
  if (stored == expected) return "";
  const std::vector<std::string> real = Lines(stored);
  const std::vector<std::string> wanted = Lines(expected);
  const std::string difference =
      LinesOnlyIn(wanted, real, "missing: ") + LinesOnlyIn(real, wanted, "too much: ");
  if (!difference.empty()) return "the store differs\n" + difference;
  return "the store holds the same in another order\n  stored:\n" + stored + "  expected:\n" +
         expected;
}

std::string TextDifference(const std::string& what, const std::string& real,
                           const std::string& expected) {
  if (real == expected) return "";
  return what + " differs\n  real:     " + testing::PrintToString(real) +
         "\n  expected: " + testing::PrintToString(expected) + "\n";
}

std::string FailedChecks(const testing::TestPartResultArray& results) {
  std::string text;
  for (int i = 0; i < results.size(); ++i) {
    const testing::TestPartResult& result = results.GetTestPartResult(i);
    if (result.failed()) text += std::string(result.message()) + "\n";
  }
  return text;
}

}  // namespace

std::string ModelCheckedTest::Compare(const std::vector<std::string>& arguments) {
  model::Store expected = store.Contents();
  testing::TestPartResultArray checks;
  Finished real;
  {
    const testing::ScopedFakeTestPartResultReporter reporter(
        testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &checks);
    real = Ostrafel(arguments);
  }

  model::ReplayEndpoint replay(recording.flights);
  const model::Outcome replayed = model::RunModel(replay, arguments);
  std::string difference;
  if (const auto divergence = replay.FirstDivergence()) difference = model::Describe(*divergence);
  difference += TextDifference("standard output", real.out, replayed.out);
  difference += TextDifference("standard error", real.err, replayed.err);
  difference +=
      TextDifference("the status", std::to_string(real.status), std::to_string(replayed.status));

  model::MemoryEndpoint memory(expected);
  const model::Outcome outcome = model::RunModel(memory, arguments);
  difference += TextDifference("standard error over a store in memory", real.err, outcome.err);
  difference += TextDifference("the status over a store in memory", std::to_string(real.status),
                               std::to_string(outcome.status));
  return difference + StoreDifference(store.Dump(), model::Dump(expected)) + FailedChecks(checks);
}

void ModelCheckedTest::RunBoth(const std::vector<std::string>& arguments) {
  const std::string difference = Compare(arguments);
  if (!difference.empty()) FAIL() << difference;
}

std::string ModelCheckedTest::Play(
    const model::Sequence& sequence,
    const std::function<std::string(const std::vector<std::string>&)>& compare) {
  (void)store.Run("FLUSHALL");
  for (const model::PlannedRun& run : sequence) {
    const TempDirectory directory;
    model::WriteTree(run.tree, directory.path(), "index.json");
    std::string difference = compare({run.action, directory.path(), run.uri});
    if (!difference.empty()) return difference;
  }
  return "";
}

std::string ModelCheckedTest::Play(const model::Sequence& sequence) {
  return Play(sequence,
              [&](const std::vector<std::string>& arguments) { return Compare(arguments); });
}

std::string ModelCheckedTest::Explain(
    const model::Sequence& sequence, const std::function<std::string(const model::Sequence&)>& play,
    std::chrono::seconds time_limit) {
  const model::Shrunk shrunk = model::Shrink(
      sequence, [&](const model::Sequence& candidate) { return !play(candidate).empty(); },
      time_limit);
  const std::string difference = play(shrunk.sequence);
  return "The smallest sequence found in " + std::to_string(shrunk.attempts) + " attempts" +
         (shrunk.is_whole ? "" : " (there was no time for more)") + ":\n" +
         model::Describe(shrunk.sequence) + "What differs after its last run:\n" +
         (difference.empty() ? "nothing this time: the failure comes and goes\n" : difference);
}
