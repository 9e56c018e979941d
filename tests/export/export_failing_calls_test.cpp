// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Calls of the system that fail in an export, each in its turn.
#include <filesystem>
#include <string>

#include "export/export_fixture.h"
#include "faults/failing_calls.h"

namespace {

namespace fs = std::filesystem;

class ExportFailingCalls : public FailingCallsTest {
 protected:
  ExportFailingCalls() {
    (void)store.Run("HSET | /r | Name | \"A\"");
    (void)store.Run("HSET | /r/b | Name | \"B\"");
    (void)store.Run("HSET | /r/b/c | Name | \"C\"");
  }

  FailingRun Export(const FailingCalls& failing) {
    return RunCommand(failing, CommandOf(OSTRAFEL_EXPORT_PROGRAM,
                                         {option, "--socket", ServerSocket(), "/r", out}));
  }

  // Fails each call of that name in a run of its own. Expects the whole tree and status 0, or
  // status 2, the reason, and nothing. Returns how many runs ended with status 2.
  unsigned long FailEach(const std::string& call, const std::string& reason) {
    const FailingRun clean = Export({});
    EXPECT_EQ(clean.finished.status, 0) << Describe(clean);
    const Listing whole = ListingOf(out);
    const unsigned long count = clean.counts.at(call);
    EXPECT_GT(count, 0U) << "an export makes no call of " << call;
    unsigned long refused = 0;
    for (unsigned long i = 0; i < count; ++i) {
      fs::remove_all(out);
      const FailingCalls failing = {call, i, false, 0};
      const FailingRun run = Export(failing);
      SCOPED_TRACE(Describe(failing) + ": " + Describe(run));
      if (run.finished.status == 0) {
        EXPECT_EQ(Difference(whole, ListingOf(out)), "");
        continue;
      }
      EXPECT_EQ(run.finished.status, 2);
      EXPECT_EQ(run.finished.err.rfind("ostrafel-export: ", 0), 0U);
      EXPECT_NE(run.finished.err.find(reason), std::string::npos);
      EXPECT_FALSE(fs::exists(out));
      ++refused;
    }
    return refused;
  }

  TempDirectory place;
  std::string option = "--quiet";
  const std::string out = place.path("out");
};

// A file system of a network or with a quota may tell only then that it is full.
TEST_F(ExportFailingCalls, CloseOfAFileLeavesNothing) {
  EXPECT_EQ(FailEach("close", "index.json: No space left on device\n"), 3U);
}

TEST_F(ExportFailingCalls, OpenLeavesNothing) {
  EXPECT_GE(FailEach("open", ": Too many open files\n"), 5U) << "of folders and files";
}

TEST_F(ExportFailingCalls, ReaddirLeavesNothing) {
  EXPECT_GE(FailEach("readdir", ": Input/output error\n"), 1U);
}

TEST_F(ExportFailingCalls, WhatIsLostIsToldThoughOtherFilesCannotBeListed) {
  (void)store.Run("SET | /r/other | x");
  option = "--force";
  const FailingRun clean = Export({});
  EXPECT_EQ(clean.finished.status, 1) << Describe(clean);
  const Listing whole = ListingOf(out);
  fs::remove_all(out);
  const FailingRun run = Export({"readdir", clean.counts.at("readdir") - 1, false, 0});
  EXPECT_EQ(run.finished.err,
            clean.finished.err + "ostrafel-export: " + out + "/b/c: Input/output error\n");
  EXPECT_EQ(run.finished.status, 2);
  EXPECT_EQ(Difference(whole, ListingOf(out)), "");
}

// Whether it is refused to the program itself or to jansson, which no exception passes through.
TEST_F(ExportFailingCalls, AllocationLeavesNoFolderOfHalfATree) {
  place.Write("www/a.json", R"({"Name": "Included", "List": [1, {"x": "y"}]})");
  (void)store.Run(
      "HSET | /r | &&File | \"a.json\" | Name | \"Included\" | &&Array List &&/r/List | ");
  (void)store.Run("RPUSH | &&/r/List | 1 | &&Object &&/r/List/1");
  (void)store.Run("HSET | &&/r/List/1 | x | \"y\"");
  option = "--www=" + place.path("www");
  const unsigned long count = Export({}).counts.at("allocation");
  if (count == 0) GTEST_SKIP() << "no allocation can fail here";
  unsigned long refused = 0;
  for (unsigned long i = 0; i < count; ++i) {
    fs::remove_all(out);
    const FailingCalls failing = {"allocation", i, false, 0};
    const FailingRun run = Export(failing);
    if (!run.crash_module.empty()) continue;  // libraries that do not look at what they get
    if (run.finished.status == 2) ++refused;
    for (const auto& [path, content] : ListingOf(out)) {
      EXPECT_EQ(path.find(".ostrafel-export-"), std::string::npos)
          << Describe(failing) << ": " << Describe(run);
    }
  }
  EXPECT_GT(refused, 0U);
}

}  // namespace
