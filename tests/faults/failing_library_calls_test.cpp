// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Failures that no file, no document and no server can bring about, each with what follows from it.
#include <string>

#include "faults/failing_calls.h"

namespace {

constexpr const char* kNullKeyMessage =
    "Error basic_string: construction from null is not valid occurs while parsing root object.\n";
constexpr const char* kTreeRemoval = "keys | /r\n--\nkeys | /r/*\n--\nkeys | &&/r/*\n";

class FailingLibraryCall : public FailingCallsTest {
 protected:
  // Runs create or update and expects status 255, these messages, nothing sent but this, and the
  // connection closed.
  void ExpectEnd(const FailingCalls& failing, const std::vector<std::string>& arguments,
                 const std::string& err, const std::string& sent) {
    const FailingRun run = RunRecorded(failing, arguments);
    EXPECT_EQ(run.finished.status, 255) << Describe(run);
    EXPECT_EQ(run.finished.out, "");
    EXPECT_EQ(run.finished.err, err);
    EXPECT_EQ(Sent(), sent);
    EXPECT_EQ(recording.connections, 1);
    EXPECT_EQ(recording.closed_by_client, 1);
  }

  // A file with an inclusion, after which the object must be changed.
  std::string WriteInclusion() {
    Include("a.json", R"({"Included": 1})");
    return tree.Write("index.json", R"({"&&File": "a.json", "Replaced": 2})");
  }
};

TEST_F(FailingLibraryCall, AnObjectThatCannotBeChangedEndsTheRun) {
  const std::string file = WriteInclusion();
  for (const std::string change : {"clear", "update"}) {
    ExpectEnd({"json_object_" + change}, {"create", file, "/r"},
              "Failed to " + change + " properties.\n>>> Error occurs when processing &&File in " +
                  file + "\n",
              kTreeRemoval);
  }
}

TEST_F(FailingLibraryCall, WithoutItsOwnFileMemberAResourceIsStillStored) {
  const std::string file = WriteInclusion();
  const FailingRun run = RunRecorded({"json_object_set_new"}, {"create", file, "/r"});
  EXPECT_EQ(run.finished.status, 0) << Describe(run);
  EXPECT_EQ(run.finished.out, kSuccessLine);
  EXPECT_EQ(run.finished.err, "");
  EXPECT_EQ(store.Dump(), "hash | /r | Included | 1\n");
}

TEST_F(FailingLibraryCall, AMemberWithoutANameEndsTheRunWithNothingOfTheFileSent) {
  const std::string file = tree.Write("index.json", R"({"A": 1, "B": [{"C": {}}], "D": "x"})");
  for (unsigned long member = 0; member < 4; ++member) {
    SCOPED_TRACE(member);
    ExpectEnd({"json_object_iter_key", member}, {"create", file, "/r"}, kNullKeyMessage,
              kTreeRemoval);
  }
}

// Its file is the last of the three.
TEST_F(FailingLibraryCall, APasswordThatCannotBeReadMeansThatNobodyAuthenticates) {
  const std::string file = tree.Write("index.json", R"({"A": 1})");
  const struct {
    FailingCalls failing;
    const char* err;
  } cases[] = {{{"fopen", 2}, "fopen: Too many open files\n"}, {{"fgets", 3}, ""}};
  for (const auto& c : cases) {
    (void)store.Run("FLUSHALL");
    const FailingRun run = RunRecorded(c.failing, {"create", file, "/r"});
    EXPECT_EQ(run.finished.status, 0) << Describe(run);
    EXPECT_EQ(run.finished.out, kSuccessLine);
    EXPECT_EQ(run.finished.err, c.err);
    EXPECT_EQ(Sent(), kTreeRemoval + std::string("--\nHSET | /r | A | 1\n"));
  }
}

}  // namespace
