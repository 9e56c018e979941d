// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Files that "&&File" of a stored resource names, and no load could have included.
#include <sys/resource.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "export/export_fixture.h"
#include "support/process.h"
#include "support/repeated.h"

namespace {

namespace fs = std::filesystem;

class ExportInclusion : public ExportTest {
 protected:
  // Exports a resource that names the file of the folder www.
  Finished ExportNaming(const std::string& name, const RunOptions& options = {}) {
    (void)store.Run(model::Command{"HSET", "/r", "&&File", '"' + name + '"', "Name", "\"A\""});
    return Export({"--quiet", "--www", place.path("www"), "/r", out}, options);
  }

  // Expects that the member is left out and listed, before long.
  void ExpectLeftOut(const std::string& name) {
    RunOptions options;
    options.time_limit = std::chrono::seconds(10);
    fs::remove_all(out);
    const Finished finished = ExportNaming(name, options);
    EXPECT_EQ(finished.err,
              "ostrafel-export: /r: &&File: a create would include a file that is another or not "
              "there\nostrafel-export: not all comes back: 1 loss at 1 key\n");
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(ListingOf(out).at("./index.json"), "file: {\n    \"Name\": \"A\"\n}\n");
  }
};

TEST_F(ExportInclusion, OpensNoFifoAndNoDevice) {
  place.MakeFolder("www");
  for (const std::string name : {"queue", "queue.json", "queue.xml"}) {
    ASSERT_EQ(mkfifo(place.path("www/" + name).c_str(), 0600), 0);
    ExpectLeftOut(name);
  }
  fs::create_symlink("/dev/zero", place.path("www/zero.json"));
  ExpectLeftOut("zero.json");
}

TEST_F(ExportInclusion, LeavesOutAFolder) {
  place.MakeFolder("www/folder.json");
  ExpectLeftOut("folder.json");
}

// A sanitizer or an emulator needs memory of its own.
bool HasMemoryOfItsOwn() {
#if defined(__SANITIZE_ADDRESS__)
  return false;
#else
  return !HasLauncher();
#endif
}

TEST_F(ExportInclusion, LeavesNothingWhenMemoryRunsOut) {
  if (!HasMemoryOfItsOwn()) GTEST_SKIP() << "something else uses memory, too";
  place.Write("www/big.json", R"({"List": [)" + Repeated("1,", 2000000) + "1]}");
  const Listing before = ListingOf(place.path());
  RunOptions small;
  small.in_child = [] {
    const rlimit limit = {32UL << 20U, 32UL << 20U};
    (void)setrlimit(RLIMIT_AS, &limit);
  };
  const Finished finished = ExportNaming("big.json", small);
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.err, "ostrafel-export: out of memory\n");
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(Difference(before, ListingOf(place.path())), "");
}

}  // namespace
