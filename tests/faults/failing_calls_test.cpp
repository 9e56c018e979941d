// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Calls of the system and of stdio that fail, each in its turn.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <set>
#include <string>

#include "faults/failing_series.h"

namespace {

constexpr const char* kNoConnection = "Failed to connect to Redis\n";
constexpr const char* kNoListing = "Error occurs while reading files\n";

class FailingCall : public FailingSeries {
 protected:
  // Expects this status of every run, beside what the general rules expect.
  static Exception Ends(int status) {
    return [status](const FailingCalls& /*failing*/, const FailingRun& run) {
      EXPECT_EQ(run.finished.status, status);
      return false;
    };
  }

  // Expects of every run that it fails with this message and that an update changes nothing.
  Exception FailsWith(const std::string& err) {
    return [this, err](const FailingCalls& /*failing*/, const FailingRun& run) {
      EXPECT_EQ(run.finished.status, 255);
      EXPECT_EQ(run.finished.err, err);
      if (action == "update") {
        EXPECT_EQ(store.Dump(), old_store);
      }
      return false;
    };
  }
};

TEST_F(FailingCall, OpenIsOfNoConsequenceWithAllStandardDescriptors) {
  FailEveryCall("open", Ends(0));
}

TEST_F(FailingCall, FopenEndsTheRunOrIsReported) { FailEveryCall("fopen"); }

TEST_F(FailingCall, FreadIsReportedAndTheFileIsParsedAllTheSame) {
  FailEveryCall("fread", [](const FailingCalls& /*failing*/, const FailingRun& run) {
    EXPECT_NE(run.finished.err.find("error: Failed to read file.\n"), std::string::npos);
    return false;
  });
}

TEST_F(FailingCall, FgetsLeavesAConfigurationUnread) { FailEveryCall("fgets"); }

// After the last brace of a document a failure passes for the end of the file.
TEST_F(FailingCall, FgetcCutsADocumentShort) { FailEveryCall("fgetc", {}, 40); }

// One read is jansson's, for a random number that it can do without.
TEST_F(FailingCall, ReadEndsTheRunUnlessItIsForARandomNumber) {
  int successes = 0;
  FailEveryCall("read", [&](const FailingCalls& failing, const FailingRun& run) {
    EXPECT_TRUE(run.finished.status != 0 || !failing.is_onwards);
    successes += run.finished.status == 0 ? 1 : 0;
    return false;
  });
  EXPECT_EQ(successes, 2) << "of a create and of an update";
}

TEST_F(FailingCall, WriteEndsTheRun) { FailEveryCall("write", Ends(255), 25); }

TEST_F(FailingCall, InterruptedReadIsTakenUpAgain) { FailEveryCallWith(EINTR, "read", Ends(0)); }

TEST_F(FailingCall, InterruptedWriteIsTakenUpAgain) { FailEveryCallWith(EINTR, "write", Ends(0)); }

TEST_F(FailingCall, SocketIsNoConnection) { FailEveryCall("socket", FailsWith(kNoConnection)); }

TEST_F(FailingCall, ConnectIsNoConnection) { FailEveryCall("connect", FailsWith(kNoConnection)); }

TEST_F(FailingCall, PopenIsNoConnection) { FailEveryCall("popen", FailsWith(kNoConnection)); }

TEST_F(FailingCall, PcloseIsOfNoConsequence) { FailEveryCall("pclose", Ends(0)); }

TEST_F(FailingCall, OpendirEndsTheRun) { FailEveryCall("opendir", FailsWith(kNoListing)); }

TEST_F(FailingCall, ReaddirEndsTheRun) { FailEveryCall("readdir", FailsWith(kNoListing)); }

// The rule is to pass over what cannot be examined: the file, or a folder with all that is in it,
// is not loaded, and the run succeeds. For a file, and for a folder at its first examination, there
// is a message; a folder that only the second examination fails for is passed over in silence.
TEST_F(FailingCall, StatPassesAnEntryOver) {
  std::set<std::string> stores;
  std::string stores_action;
  FailEveryCall("stat", [&](const FailingCalls& /*failing*/, const FailingRun& run) {
    if (run.finished.status != 0) return false;
    const std::string stored = store.Dump();
    if (stores_action != action) {
      stores = StoresOfSomeFiles(action);
      stores_action = action;
    }
    ExpectDocumentedMessages(run.finished.err);
    return run.finished.out == kSuccessLine && stores.count(stored) == 1;
  });
}

// The line of success is lost with the standard output that cannot take it; the status is not.
TEST_F(FailingCall, PutsLosesTheLineOfSuccess) {
  FailEveryCall("puts", [&](const FailingCalls& /*failing*/, const FailingRun& run) {
    return run.finished.status == 0 && run.finished.out.empty() && run.finished.err.empty() &&
           store.Dump() == clean_store;
  });
}

void CloseStandardError() { (void)close(STDERR_FILENO); }

void CloseStandardDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) (void)close(descriptor);
}

void CloseStandardInputAndOutput() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO}) (void)close(descriptor);
}

// Without a place for messages nothing is opened: a message would be sent to the server.
TEST_F(FailingCall, OpenWithoutStandardDescriptorsEndsTheRunBeforeItBegins) {
  const struct {
    void (*in_child)();
    unsigned long opened;
    const char* err;
  } cases[] = {{CloseStandardError, 1, ""},
               {CloseStandardDescriptors, 3, ""},
               {CloseStandardInputAndOutput, 2, "/dev/null: Too many open files\n"}};
  for (const auto& c : cases) {
    for (unsigned long i = 0; i < c.opened; ++i) {
      for (const bool is_onwards : {false, true}) {
        RestoreStore();
        const std::string stored = store.Dump();
        const FailingRun run =
            RunDirectly({"open", i, is_onwards, 0}, Arguments("create"), c.in_child);
        SCOPED_TRACE(Describe(run));
        EXPECT_EQ(run.finished.status, 255);
        EXPECT_EQ(run.finished.out, "");
        EXPECT_EQ(run.finished.err, c.err);
        EXPECT_EQ(run.counts.at("socket"), 0U);
        EXPECT_EQ(run.counts.at("popen"), 0U);
        EXPECT_EQ(store.Dump(), stored);
      }
    }
  }
}

// The one open that comes after these is jansson's, for a random number that it can do without.
TEST_F(FailingCall, OpenOfAnythingElseWithoutStandardErrorIsOfNoConsequence) {
  RestoreStore();
  (void)RunDirectly({}, Arguments("create"));
  const std::string clean = store.Dump();
  RestoreStore();
  const FailingRun run = RunDirectly({"open", 1, true, 0}, Arguments("create"), CloseStandardError);
  EXPECT_EQ(run.finished.status, 0) << Describe(run);
  EXPECT_EQ(run.finished.out, kSuccessLine);
  EXPECT_EQ(run.counts.at("open"), 2U);
  EXPECT_EQ(store.Dump(), clean);
}

}  // namespace
