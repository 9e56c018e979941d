// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Texts and lists that the C++ library calls too long. Only where something is listed, queued or
// removed does the program say so itself; while a resource is written the driver says it; anywhere
// else it ends the process.
#include <functional>
#include <string>
#include <vector>

#include "faults/failing_calls.h"

namespace {

constexpr const char* kUri = "/a/uri/that/needs/memory";
constexpr const char* kPushFailed = "Failed to push data: planned.\n";
constexpr const char* kRemovalFailed =
    "Failed to push data: planned.\nFail to remove resource tree\n";
constexpr const char* kWriterFailed = "Error planned occurs while parsing root object.\n";
constexpr const char* kNobodyTookIt =
    "terminate called after throwing an instance of 'std::length_error'\n  what():  planned\n";
constexpr const char* kTreeRemoval =
    "keys | /a/uri/that/needs/memory\n--\nkeys | /a/uri/that/needs/memory/*\n--\n"
    "keys | &&/a/uri/that/needs/memory/*\n";

class LengthError : public FailingCallsTest {
 protected:
  struct End {
    std::string err;
    int status = 255;
    std::function<void()> check_sent;
  };

  // Lets each allocation of a run fail, the store filled by prepare. Every run must end in one of
  // these ways, each of which must come up, or in one of the two ways of the rest.
  void ExpectEnds(
      const std::vector<std::string>& arguments, const std::vector<End>& ends,
      const std::function<void()>& prepare = [] {}) {
    prepare();
    const FailingRun clean = RunRecorded({}, arguments);
    ASSERT_EQ(clean.finished.err, "");
    ASSERT_GT(clean.counts.at("new"), 0U);
    std::vector<int> found(ends.size(), 0);
    for (unsigned long i = 0; i < clean.counts.at("new"); ++i) {
      (void)store.Run("FLUSHALL");
      prepare();
      const FailingRun run = RunRecorded({"new", i}, arguments);
      SCOPED_TRACE("allocation " + std::to_string(i) + ": " + Describe(run));
      const Finished& finished = run.finished;
      bool is_expected = false;
      for (std::size_t end = 0; end < ends.size(); ++end) {
        if (finished.err != ends[end].err) continue;
        is_expected = true;
        ++found[end];
        EXPECT_EQ(finished.status, ends[end].status);
        EXPECT_EQ(finished.out, ends[end].status == 0 ? kSuccessLine : "");
        EXPECT_EQ(recording.connections, 1);
        ends[end].check_sent();
      }
      if (is_expected) continue;
      EXPECT_EQ(finished.out, "");
      if (finished.err == kWriterFailed) {
        EXPECT_EQ(finished.status, 255);
      } else {
        EXPECT_EQ(finished.err, kNobodyTookIt);
        EXPECT_EQ(finished.status, 134);
      }
    }
    for (std::size_t end = 0; end < ends.size(); ++end) EXPECT_GT(found[end], 0) << ends[end].err;
  }

  // What was sent is exactly this.
  std::function<void()> HasSent(const std::string& sent) {
    return [this, sent] { EXPECT_EQ(Sent(), sent); };
  }

  // No change of the store was sent.
  std::function<void()> HasOnlyAsked() {
    return [this] {
      for (const model::Flight& flight : recording.flights) {
        for (const model::Command& command : flight.commands) {
          EXPECT_TRUE(command[0] == "TYPE" || command[0] == "SCAN" || command[0] == "HSCAN" ||
                      command[0] == "LINDEX")
              << Sent();
        }
      }
    };
  }
};

// The uri is copied before anything is sent. A run without a file to load succeeds.
TEST_F(LengthError, OfTheUriFailsTheRemovalAndOfTheListOfFilesLeavesASingleFileOut) {
  const std::string file = tree.Write("index.json", R"({"A": 1})");
  ExpectEnds({"create", file, kUri},
             {{kRemovalFailed, 255, HasSent("")}, {kPushFailed, 0, HasSent(kTreeRemoval)}});
}

TEST_F(LengthError, OfTheListOfFilesFailsTheWalk) {
  (void)tree.Write("index.json", R"({"A": 1})");
  ExpectEnds({"create", tree.path(), kUri},
             {{std::string(kPushFailed) + "Error occurs while reading files\n", 255,
               HasSent(kTreeRemoval)},
              {kRemovalFailed, 255, HasSent("")}});
}

TEST_F(LengthError, OfAListOfValuesFailsTheFile) {
  const std::string path = tree.Write("index.json", R"({"A": ["a value that needs memory"]})");
  ExpectEnds({"create", tree.path(), kUri},
             {{std::string(kPushFailed) + ">>> Error occurs while parsing file " + path + "\n", 255,
               HasSent(kTreeRemoval)},
              {std::string(kPushFailed) + "Error occurs while reading files\n", 255,
               HasSent(kTreeRemoval)},
              {kRemovalFailed, 255, HasSent("")}});
}

TEST_F(LengthError, OfTheRemovalsOfAnObjectFailsTheFile) {
  const std::string path = tree.Write("index.json", R"({"A": {}})");
  ExpectEnds({"update", tree.path(), kUri},
             {{std::string(kPushFailed) + ">>> Error occurs while parsing file " + path + "\n", 255,
               HasOnlyAsked()},
              {std::string(kPushFailed) + "Error occurs while reading files\n", 255, HasSent("")}},
             [&] {
               (void)store.Run(model::Command{"RPUSH", "&&" + std::string(kUri) + "/A", "1"});
             });
}

// A scalar is written even when its older shape cannot be removed.
TEST_F(LengthError, OfTheRemovalsOfAScalarIsReportedAndTheRunGoesOn) {
  (void)tree.Write("index.json", R"({"A": 1})");
  const auto check_value = [&] {
    EXPECT_EQ(store.Run(model::Command{"HGET", kUri, "A"}).text, "1") << Sent();
  };
  ExpectEnds({"update", tree.path(), kUri},
             {{kPushFailed, 0, check_value},
              {std::string(kPushFailed) + "Error occurs while reading files\n", 255, HasSent("")}},
             [&] {
               (void)store.Run(
                   model::Command{"HSET", "&&" + std::string(kUri) + "/A", "Was", "an object"});
             });
}

}  // namespace
