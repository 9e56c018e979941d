// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What an export leaves in the file system: in its folder, and beside it.
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "export/export_files_fixture.h"
#include "support/test_factor.h"
#include "system/file_capabilities.h"

namespace {

namespace fs = std::filesystem;

using model::Command;

const std::string kForceHint = "; --force writes into it all the same\n";

// --- The folder ----------------------------------------------------------------------------------

TEST_F(ExportFiles, AFolderThatIsNotThereIsMade) {
  ExpectWritten(Export({"/r", out}), "3 resources", out);
  EXPECT_EQ(Difference(kTree, ListingOf(out)), "");
  EXPECT_EQ(Difference(around, Around()), "");
}

TEST_F(ExportFiles, AnEmptyFolderIsFilled) {
  fs::create_directory(out);
  ExpectWritten(Export({"/r", out}), "3 resources", out);
  EXPECT_EQ(Difference(kTree, ListingOf(out)), "");
}

TEST_F(ExportFiles, FoldersAreNamedAsTheyAreTyped) {
  for (const std::string& typed : {out + "/", out + "//", out + "/."}) {
    fs::remove_all(out);
    fs::create_directory(out);
    ExpectWritten(Export({"/r", typed}), "3 resources", typed);
    EXPECT_EQ(Difference(kTree, ListingOf(out)), "");
  }
  fs::remove_all(out);
  ExpectWritten(Export({"/r", out + "/"}), "3 resources", out + "/");
  EXPECT_EQ(Difference(kTree, ListingOf(out)), "");
}

TEST_F(ExportFiles, AFolderInOneThatIsNotThereIsRefused) {
  ExpectRefusal(Export({"/r", out + "/x/y"}), out + "/x/y: No such file or directory\n");
}

TEST_F(ExportFiles, AFileIsNoFolder) {
  const std::string file = place.path("beside/file");
  ExpectRefusal(Export({"/r", file}), file + ": Not a directory\n");
  ExpectRefusal(Export({"--force", "/r", file}), file + ": Not a directory\n");
}

TEST_F(ExportFiles, AFolderThatHoldsSomethingIsRefused) {
  const std::string beside = place.path("beside");
  place.Write("beside/another", "");
  Remember();
  ExpectRefusal(Export({"/r", beside}), beside + ": is not empty, it holds another" + kForceHint);
  place.Write("beside/.hidden", "");
  Remember();
  ExpectRefusal(Export({"/r", beside}), beside + ": is not empty, it holds .hidden" + kForceHint);
}

TEST_F(ExportFiles, ALinkToAFolderMayBeNamed) {
  fs::create_directory(out);
  fs::create_directory_symlink("out", place.path("to_out"));
  for (const char* typed : {"to_out", "to_out/"}) {
    fs::remove_all(out);
    fs::create_directory(out);
    ExpectWritten(Export({"/r", place.path(typed)}), "3 resources", place.path(typed));
    EXPECT_EQ(Difference(kTree, ListingOf(out)), "");
  }
  EXPECT_TRUE(fs::is_symlink(place.path("to_out")));
  fs::create_directory_symlink("nowhere", place.path("to_nowhere"));
  Remember();
  const std::string nowhere = place.path("to_nowhere");
  ExpectRefusal(Export({"/r", nowhere}), nowhere + ": No such file or directory\n");
}

TEST_F(ExportFiles, AFolderThatMayNotBeWrittenIsRefused) {
  fs::create_directory(out);
  ASSERT_EQ(chmod(out.c_str(), 0500), 0);
  Remember();
  RunOptions options;
  options.in_child = GiveUpFileCapabilities;
  ExpectRefusal(Export({"/r", out}, options), out + ": Permission denied\n");
  ExpectRefusal(Export({"/r", out + "/x"}, options), out + "/x: Permission denied\n");
}

TEST_F(ExportFiles, AFolderThatMayNotBeReadIsRefused) {
  fs::create_directory(out);
  ASSERT_EQ(chmod(out.c_str(), 0300), 0);
  Remember();
  RunOptions options;
  options.in_child = GiveUpFileCapabilities;
  ExpectRefusal(Export({"/r", out}, options), out + ": Permission denied\n");
}

TEST_F(ExportFiles, TheUmaskSaysWhoMayRead) {
  RunOptions options;
  options.in_child = [] { (void)umask(0027); };
  ExpectWritten(Export({"/r", out}, options), "3 resources", out);
  const auto mode = [](const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
  };
  EXPECT_EQ(mode(out), 0750U);
  EXPECT_EQ(mode(out + "/index.json"), 0640U);
  EXPECT_EQ(mode(out + "/b"), 0750U);
  EXPECT_EQ(mode(out + "/b/c/index.json"), 0640U);
}

// --- Over what is there --------------------------------------------------------------------------

TEST_F(ExportFiles, ForceReplacesAnOlderTree) {
  ExpectWritten(Export({"/r", out}), "3 resources", out);
  (void)store.Run("HSET | /r | Name | \"New\"");
  (void)store.Run("HSET | /r/b/d | Name | \"D\"");
  ExpectWritten(Export({"--force", "/r", out}), "4 resources", out);
  Listing expected = kTree;
  expected["./index.json"] = "file: {\n    \"Name\": \"New\"\n}\n";
  expected["b/d"] = "folder";
  expected["b/d/index.json"] = "file: {\n    \"Name\": \"D\"\n}\n";
  EXPECT_EQ(Difference(expected, ListingOf(out)), "");
  EXPECT_EQ(Difference(around, Around()), "");
}

TEST_F(ExportFiles, ForceLeavesOtherFilesAndListsThoseThatALoadWouldTake) {
  place.Write("out/README", "stays");
  place.Write("out/b/notes.json", "stays");
  place.Write("out/old/deep/index.json", "{}");
  place.Write("out/b/old/index.json", "{}");
  for (const std::string& typed : {out, out + "/", out + "//"}) {
    const Finished finished = Export({"--force", "/r", typed});
    EXPECT_EQ(finished.out, "3 resources written to " + typed + "\n");
    const std::string why = ": is not of this export, and a create would load it\n";
    EXPECT_EQ(finished.err, "ostrafel-export: " + out + "/b/old/index.json" + why +
                                "ostrafel-export: " + out + "/old/deep/index.json" + why +
                                "ostrafel-export: not all comes back: 2 losses at 2 keys\n");
    EXPECT_EQ(finished.status, 1);
  }
  Listing expected = kTree;
  expected["./README"] = expected["b/notes.json"] = "file: stays";
  expected["b/old/index.json"] = expected["old/deep/index.json"] = "file: {}";
  expected["b/old"] = expected["./old"] = expected["old/deep"] = "folder";
  EXPECT_EQ(Difference(expected, ListingOf(out)), "");
}

// What is in the way comes last here.
TEST_F(ExportFiles, AFileInTheWayOfAFolderIsLeftAndNothingIsWritten) {
  (void)store.Run("HSET | /r/a | Name | 1");
  place.Write("out/b/c", "a file");
  place.Write("out/index.json", "old");
  Remember();
  ExpectRefusal(Export({"--force", "/r", out}), out + "/b/c: Not a directory\n");
}

TEST_F(ExportFiles, AFolderInTheWayOfAFileIsLeftAndNothingIsWritten) {
  (void)store.Run("HSET | /r/a | Name | 1");
  place.MakeFolder("out/b/c/index.json");
  place.Write("out/index.json", "old");
  Remember();
  ExpectRefusal(Export({"--force", "/r", out}), out + "/b/c/index.json: Is a directory\n");
}

TEST_F(ExportFiles, ALinkInTheWayOfAFolderIsNotFollowedAndNothingIsWritten) {
  (void)store.Run("HSET | /r/a | Name | 1");
  const std::string why = ": is a symbolic link, which is not followed\n";
  for (const std::string& target :
       {place.path("beside"), std::string("../beside"), std::string("nowhere"), std::string(".")}) {
    fs::remove_all(out);
    fs::create_directory(out);
    fs::create_directory_symlink(target, out + "/b");
    place.Write("out/index.json", "old");
    Remember();
    ExpectRefusal(Export({"--force", "/r", out}), out + "/b" + why);
    if (HasFailure()) return;
  }
}

TEST_F(ExportFiles, ALinkInTheWayOfAFileIsReplaced) {
  fs::create_directory(out);
  fs::create_symlink(place.path("beside/file"), out + "/index.json");
  ExpectWritten(Export({"--force", "/r", out}), "3 resources", out);
  EXPECT_EQ(Difference(kTree, ListingOf(out)), "");
  EXPECT_EQ(Difference(around, Around()), "");
}

TEST_F(ExportFiles, OnlyLinksThatALoadWouldTakeAreListed) {
  for (const char* folder : {"/x", "/dangling", "/queue"}) fs::create_directories(out + folder);
  fs::create_symlink("../../beside", out + "/x/folder");
  fs::create_symlink("../../beside/file", out + "/x/index.json");
  fs::create_symlink("../../beside/file", out + "/x/harmless");
  fs::create_symlink("nowhere", out + "/dangling/index.json");
  ASSERT_EQ(mkfifo((out + "/queue/index.json").c_str(), 0600), 0);
  const Finished finished = Export({"--force", "/r", out});
  const std::string why = ": is not of this export, and a create would load it\n";
  EXPECT_EQ(finished.err, "ostrafel-export: " + out + "/x/folder" + why +
                              "ostrafel-export: " + out + "/x/index.json" + why +
                              "ostrafel-export: not all comes back: 2 losses at 2 keys\n");
  EXPECT_EQ(finished.status, 1);
}

// --- What goes wrong -----------------------------------------------------------------------------

void AllowSmallFiles() {
  (void)signal(SIGXFSZ, SIG_IGN);  // so that a write fails instead
  const rlimit limit = {1000, 1000};
  (void)setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(ExportFiles, AFileThatHasNoRoomLeavesNothing) {
  (void)store.Run(Command{"HSET", "/r/b/c", "Long", '"' + std::string(2000, 'x') + '"'});
  RunOptions options;
  options.in_child = AllowSmallFiles;
  ExpectRefusal(Export({"/r", out}, options), out + "/b/c/index.json: File too large\n");
  place.Write("out/index.json", "old");
  Remember();
  ExpectRefusal(Export({"--force", "/r", out}, options), out + "/b/c/index.json: File too large\n");
}

// A disk of 64 KiB in the place of a folder.
class SmallDisk {
 public:
  explicit SmallDisk(const std::string& folder) : folder_(folder) {
    is_there_ = mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
  ~SmallDisk() {
    if (is_there_) (void)umount2(folder_.c_str(), MNT_DETACH);
  }

  [[nodiscard]] bool IsThere() const { return is_there_; }

 private:
  const std::string folder_;
  bool is_there_;
};

TEST_F(ExportFiles, AFullDiskLeavesNothing) {
  const char* sandbox = std::getenv("OSTRAFEL_SANDBOX");
  if (sandbox == nullptr || sandbox != std::string("private")) {
    GTEST_SKIP() << "a disk can be mounted in a sandbox of its own only";
  }
  fs::create_directory(out);
  const SmallDisk disk(out);
  if (!disk.IsThere()) GTEST_SKIP() << "no disk can be mounted: " << std::strerror(errno);
  Remember();
  const std::string long_text = '"' + std::string(200000, 'x') + '"';
  (void)store.Run(Command{"HSET", "/r/b/c", "Long", long_text});
  const std::string why = "/b/c/index.json: No space left on device\n";
  ExpectRefusal(Export({"/r", out}), out + why);
  place.Write("out/index.json", "old");
  Remember();
  ExpectRefusal(Export({"--force", "/r", out}), out + why);
}

// --- Two exports at once -------------------------------------------------------------------------

TEST_F(ExportFiles, AnotherExportIntoTheFolderIsRefusedMeanwhile) {
  for (const std::string option : {"--quiet", "--force"}) {
    const std::size_t flights = [&] {
      (void)RecordedExport({"/r", place.path("first")});
      fs::remove_all(place.path("first"));
      return recording.flights.size();
    }();
    ASSERT_GT(flights, 1U);
    for (std::size_t flight = 1; flight < flights; ++flight) {
      Finished other;
      plan = [&](Recorder& recorder) {
        recorder.Before(flight, [&] { other = Export({option, "/r/b", out}); });
      };
      ExpectWritten(RecordedExport({"/r", out}), "3 resources", out);
      plan = nullptr;
      EXPECT_EQ(other.err, "ostrafel-export: " + out + ": another export writes into it\n");
      EXPECT_EQ(other.status, 2);
      EXPECT_EQ(Difference(kTree, ListingOf(out)), "");
      fs::remove_all(out);
    }
  }
}

TEST_F(ExportFiles, OfTwoExportsAtOnceOneIsWrittenOrNone) {
  (void)store.Run("HSET | /s/a | Name | 1");
  (void)store.Run("HSET | /s/z/z | Name | 1");
  (void)Export({"/s", out});
  const Listing tree_of_s = ListingOf(out);
  for (unsigned long i = 0; i < 25 * TestFactor(); ++i) {
    fs::remove_all(out);
    Finished second;
    std::thread beside([&] { second = Export({"/s", out}); });
    const Finished first = Export({"/r", out});
    beside.join();
    ASSERT_TRUE(first.status == 2 || second.status == 2) << i;
    ASSERT_TRUE(first.status == 0 || first.status == 2) << first.err;
    ASSERT_TRUE(second.status == 0 || second.status == 2) << second.err;
    const Listing expected = first.status == 0 ? kTree : second.status == 0 ? tree_of_s : Listing();
    ASSERT_EQ(Difference(expected, ListingOf(out)), "") << i;
    ASSERT_EQ(Difference(around, Around()), "") << i;
  }
}

}  // namespace
