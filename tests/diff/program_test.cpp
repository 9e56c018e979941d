// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The program as a person or a build runs it, with another tree instead of a server.
#include "support/program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/process.h"
#include "support/repeated.h"
#include "support/temp_directory.h"

namespace {

using Words = std::vector<std::string>;

const std::string kHint = "Try 'ostrafel-diff --help' for more information.\n";

Finished Diff(const Words& words, const RunOptions& options = {}) {
  Words command = ProgramCommand({});  // with what runs it, such as an emulator
  command.back() = OSTRAFEL_DIFF_PROGRAM;
  command.insert(command.end(), words.begin(), words.end());
  return RunProgram(command, options);
}

// A sanitizer or an emulator needs memory of its own.
bool HasMemoryOfItsOwn() {
#if defined(__SANITIZE_ADDRESS__)
  return false;
#else
  return !HasLauncher();
#endif
}

class DiffProgram : public ::testing::Test {
 protected:
  DiffProgram() {
    directory.Write("old/index.json", R"({"@odata.id": "/r", "Name": "Old", "Gone": 1})");
    directory.Write("new/index.json",
                    "{\"@odata.id\": \"/r\",\n\"Name\": \"New\",\n\"More\": [1]}");
    directory.Write("bad/index.json", R"({"Name": "Bad", "A": {"@odata.id": 1}})");
  }

  [[nodiscard]] std::string Path(const std::string& name) const { return directory.path(name); }

  // What the program says of "new" beside "old", with these options.
  [[nodiscard]] Finished Compared(Words words, const RunOptions& options = {}) const {
    words.insert(words.end(), {"--against", Path("old"), Path("new"), "/r"});
    return Diff(words, options);
  }

  TempDirectory directory;  ///< With two trees, and one that does not load.
};

// --- What is compared ----------------------------------------------------------------------------

TEST_F(DiffProgram, EndsWith0WhenNothingDiffers) {
  const Finished finished = Diff({"--against", Path("old"), Path("old"), "/r"});
  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.out, "equal: 1 file, 1 key, 3 records\n");
  EXPECT_EQ(finished.err, "");
}

TEST_F(DiffProgram, EndsWith1AndShowsWhatDiffers) {
  const Finished finished = Compared({});
  const std::string file = Path("new/index.json");
  EXPECT_EQ(finished.status, 1);
  EXPECT_EQ(finished.out, "  hash  /r\n    " + file +
                              ": /Gone\n"
                              "      - Gone  1\n    " +
                              file +
                              ":3: /More\n"
                              "      + &&Array More &&/r/More\n    " +
                              file +
                              ":2: /Name\n"
                              "      - Name  \"Old\"\n"
                              "      + Name  \"New\"\n"
                              "+ list  &&/r/More\n    " +
                              file +
                              ":3: /More\n"
                              "      + 0  1\n"
                              "2 keys differ; records: 2 missing, 1 extra, 1 changed\n");
  EXPECT_EQ(finished.err, "");
}

TEST_F(DiffProgram, ComparesWithAFile) {
  const Finished finished =
      Diff({"--against", Path("old/index.json"), Path("old/index.json"), "/r"});
  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.out, "equal: 1 file, 1 key, 3 records\n");
  EXPECT_EQ(Diff({"--against", Path("old"), Path("new/index.json"), "/r"}).status, 1);
}

TEST_F(DiffProgram, TakesFilesOfAnotherName) {
  directory.Write("old/other.json", R"({"@odata.id": "/r", "A": 1})");
  directory.Write("new/other.json", R"({"@odata.id": "/r", "A": 1})");
  EXPECT_EQ(Diff({"--against", Path("old"), Path("new"), "/r", "other.json"}).status, 0);
}

TEST_F(DiffProgram, ComparesWithWhatAnUpdateWouldMake) {
  // An update keeps what the tree does not have.
  const Finished finished = Compared({"--update", "--format", "json"});
  EXPECT_EQ(finished.status, 1);
  EXPECT_EQ(finished.out.find("\"Gone\""), std::string::npos) << finished.out;
  EXPECT_NE(finished.out.find("\"/Name\""), std::string::npos) << finished.out;
}

TEST_F(DiffProgram, TakesIncludedFilesFromTheFolder) {
  directory.Write("new/index.json", R"({"@odata.id": "/r", "&&File": "x.json"})");
  EXPECT_EQ(Compared({}).status, 2);
  directory.Write("www/x.json", R"({"Name": "X"})");
  const Finished finished = Compared({"--www", Path("www")});
  EXPECT_EQ(finished.status, 1);
  EXPECT_NE(finished.out.find("    " + Path("www/x.json") + ":1: /Name\n"), std::string::npos)
      << finished.out;
  EXPECT_EQ(finished.err, "");
}

// --- What is shown -------------------------------------------------------------------------------

TEST_F(DiffProgram, LeavesOutWhatIsIgnored) {
  EXPECT_EQ(Compared({"--ignore", "/Name", "--ignore", "*/More", "--ignore", "/Gone"}).status, 0);
  EXPECT_EQ(Compared({"--ignore", "*"}).status, 0);
  const Finished finished = Compared({"--ignore", "/Name"});
  EXPECT_EQ(finished.status, 1);
  EXPECT_EQ(finished.out.find("Name"), std::string::npos) << finished.out;
}

TEST_F(DiffProgram, LeavesOutWhatOnlyTheStoreHas) {
  const Finished finished = Compared({"--no-extra"});
  EXPECT_EQ(finished.status, 1);
  EXPECT_EQ(finished.out.find("Gone"), std::string::npos) << finished.out;
  EXPECT_NE(finished.out.find("2 missing, 0 extra, 1 changed"), std::string::npos) << finished.out;
}

TEST_F(DiffProgram, ShowsNumbers) {
  EXPECT_EQ(Compared({"--stat"}).out,
            "  keys  missing    extra  changed  resource\n"
            "     2        2        1        1  /r\n"
            "2 keys differ; records: 2 missing, 1 extra, 1 changed\n");
}

TEST_F(DiffProgram, ShowsJson) {
  const Finished finished = Compared({"--format", "json"});
  EXPECT_EQ(finished.status, 1);
  EXPECT_EQ(finished.out.compare(0, 19, "{\n  \"version\": 1,\n "), 0) << finished.out;
  EXPECT_NE(finished.out.find("\"file\": \"index.json\""), std::string::npos) << finished.out;
}

TEST_F(DiffProgram, ShowsNothingWhereItIsToBeQuiet) {
  for (const Words& words :
       {Words{"-q"}, Words{"--quiet", "--stat"}, Words{"--quiet", "--format", "json"}}) {
    const Finished finished = Compared(words);
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.out + finished.err, "");
  }
}

TEST_F(DiffProgram, HasColorsWhereTheyAreWanted) {
  EXPECT_EQ(Compared({}).out.find('\033'), std::string::npos);
  EXPECT_NE(Compared({"--color", "always"}).out.find("\033[1;31m- Gone  1\033[0m\n"),
            std::string::npos);
}

// --- Trouble -------------------------------------------------------------------------------------

TEST_F(DiffProgram, EndsWith2AfterAWrongLine) {
  const Finished finished = Diff({Path("old"), "/r", "--nonsense"});
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.err, "ostrafel-diff: unrecognized option '--nonsense'\n" + kHint);
}

TEST_F(DiffProgram, EndsWith2WhereNoTreeIs) {
  for (const Words& words : {Words{"--against", Path("old"), Path("none"), "/r"},
                             Words{"--against", Path("none"), Path("old"), "/r"}}) {
    const Finished finished = Diff(words);
    EXPECT_EQ(finished.status, 2);
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.err, "ostrafel-diff: " + Path("none") + ": No such file or directory\n");
  }
}

TEST_F(DiffProgram, EndsWith2WhereATreeDoesNotLoad) {
  for (const Words& words : {Words{"--against", Path("old"), Path("bad"), "/r"},
                             Words{"--against", Path("bad"), Path("old"), "/r"}}) {
    const Finished finished = Diff(words);
    EXPECT_EQ(finished.status, 2);
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.err, ">>> Error occurs while parsing file " + Path("bad/index.json") +
                                "\nostrafel-diff: a create of " + Path("bad") +
                                " would end with status 255\n");
  }
}

TEST_F(DiffProgram, EndsWith2WhereAnUpdateWouldFail) {
  const Finished finished = Diff({"--update", "--against", Path("old"), Path("bad"), "/r"});
  EXPECT_EQ(finished.status, 2);
  EXPECT_NE(finished.err.find("ostrafel-diff: an update of " + Path("bad") +
                              " would end with status 255\n"),
            std::string::npos)
      << finished.err;
  EXPECT_EQ(finished.out, "");
}

TEST_F(DiffProgram, ShowsWhatAnUpdateThatFailsWouldLeave) {
  directory.Write("half/index.json", R"({"Kept": 1})");
  // Enough for what waits to be sent before the failure.
  std::string members;
  for (int i = 0; i < 2500; ++i) members += "\"M" + std::to_string(i) + "\": 1, ";
  directory.Write("half/a.json", "{" + members + R"("Bad": {"@odata.id": 1, "x": 2}})");
  const Finished finished =
      Diff({"--update", "--format=json", "--against", Path("half"), Path("half/a.json"), "/r"});
  EXPECT_EQ(finished.status, 2);
  EXPECT_NE(finished.err.find("would end with status 255\n"), std::string::npos) << finished.err;
  EXPECT_NE(finished.out.find("\"equal\": false"), std::string::npos);
  EXPECT_NE(finished.out.find("\"M0\""), std::string::npos);
}

TEST_F(DiffProgram, WarnsOfATreeWithoutFiles) {
  const Finished finished = Diff({"--against", Path("old"), Path("old"), "/r", "Index.json"});
  const std::string warning = "ostrafel-diff: " + Path("old") + ": holds no file Index.json\n";
  EXPECT_EQ(finished.err, warning + warning);
  EXPECT_EQ(finished.out, "equal: 0 files, 0 keys, 0 records\n");
  EXPECT_EQ(finished.status, 0);
}

TEST_F(DiffProgram, EndsWith2WithoutTheIncludeFolder) {
  const Finished finished = Compared({"--www", Path("none")});
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.err, "ostrafel-diff: " + Path("none") + "/: is no folder\n");
}

TEST_F(DiffProgram, EndsWith2WithoutThePassword) {
  const Finished finished = Diff({"--password-file", Path("none"), Path("old"), "/r"});
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.err, "ostrafel-diff: " + Path("none") + ": No such file or directory\n");
}

TEST_F(DiffProgram, EndsWith2WithoutAServer) {
  const Finished finished = Diff({"--socket", Path("none"), Path("old"), "/r"});
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "");
  EXPECT_NE(finished.err.find("ostrafel-diff: "), std::string::npos) << finished.err;
}

TEST_F(DiffProgram, EndsWith2WhenTheDiskIsFull) {
  RunOptions full;
  full.in_child = [] { (void)dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
  const std::string complaint = "ostrafel-diff: standard output: No space left on device\n";
  for (const char* word : {"--help", "--version", "--stat", "--format=json", "--format=text"}) {
    const Finished finished = Compared({word}, full);
    EXPECT_EQ(finished.status, 2) << word;
    EXPECT_EQ(finished.err, complaint);
  }
  EXPECT_EQ(Compared({"-q"}, full).status, 1);
}

TEST_F(DiffProgram, EndsWith2WithoutStandardOutput) {
  RunOptions closed;
  closed.in_child = [] { (void)close(STDOUT_FILENO); };
  const Finished finished = Compared({}, closed);
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.err, "ostrafel-diff: standard output: Bad file descriptor\n");
}

TEST_F(DiffProgram, EndsWith2WhenMemoryRunsOut) {
  if (!HasMemoryOfItsOwn()) GTEST_SKIP() << "something else uses memory, too";
  directory.Write("new/index.json",
                  R"({"Name": "Big", "List": [)" + Repeated("1,", 2000000) + "1]}");
  RunOptions small;
  small.in_child = [] {
    const rlimit limit = {32UL << 20U, 32UL << 20U};
    (void)setrlimit(RLIMIT_AS, &limit);
  };
  const Finished finished = Compared({}, small);
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.err, "ostrafel-diff: out of memory\n");
}

}  // namespace
