// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The program as a person or a build runs it.
#include "support/program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/process.h"
#include "support/temp_directory.h"

namespace {

using Words = std::vector<std::string>;

const std::string kHint = "Try 'ostrafel-check --help' for more information.\n";

class CheckProgram : public ::testing::Test {
 protected:
  CheckProgram() {
    directory.Write("tree/index.json", R"({"@odata.id": "/redfish/v1", "Name": "Root"})");
    directory.Write("bad/index.json", R"({"Name": "Bad", "A": {"@odata.id": 1}})");
  }

  std::string Path(const std::string& name) const { return directory.path(name); }

  TempDirectory directory;  ///< With a sound tree, and one that does not load.
};

Finished Check(const Words& words, const RunOptions& options = {}) {
  return RunProgram(CommandOf(OSTRAFEL_CHECK_PROGRAM, words), options);
}

// A sanitizer or an emulator needs memory of its own.
bool HasMemoryOfItsOwn() {
#if defined(__SANITIZE_ADDRESS__)
  return false;
#else
  return !HasLauncher();
#endif
}

// --- Status and messages -------------------------------------------------------------------------

TEST_F(CheckProgram, EndsWith0WhenNothingIsFound) {
  const Finished finished = Check({Path("tree")});
  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.err, "");
}

TEST_F(CheckProgram, EndsWith2AfterAWrongLine) {
  const Finished finished = Check({Path("tree"), "--nonsense"});
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.err, "ostrafel-check: unrecognized option '--nonsense'\n" + kHint);
}

TEST_F(CheckProgram, EndsWith2WhereNoTreeIs) {
  for (const Words& more : {Words{}, Words{"--print-store"}}) {
    Words words = {Path("none")};
    words.insert(words.end(), more.begin(), more.end());
    const Finished finished = Check(words);
    EXPECT_EQ(finished.status, 2);
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.err, "ostrafel-check: " + Path("none") + ": No such file or directory\n");
  }
}

TEST_F(CheckProgram, EndsWith2WhereTheLoaderTakesNothing) {
  const std::string path = directory.Write("notes.txt", "{}");
  const Finished finished = Check({path});
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.err, "ostrafel-check: " + path +
                              ": is neither a folder nor a file whose name ends in .json\n");
}

TEST_F(CheckProgram, EndsWith2WithoutTheIncludeFolder) {
  for (const std::string& folder : {Path("none"), Path("tree/index.json")}) {
    const Finished finished = Check({Path("tree"), "--www", folder});
    EXPECT_EQ(finished.status, 2);
    EXPECT_EQ(finished.err, "ostrafel-check: " + folder + "/: is no folder\n");
  }
}

TEST_F(CheckProgram, TakesIncludedFilesFromTheFolder) {
  directory.Write("tree/index.json", R"({"&&File": "x.json"})");
  EXPECT_EQ(Check({Path("tree"), "--print-store"}).status, 1);
  directory.Write("www/x.json", R"({"Name": "X"})");
  const Finished finished = Check({Path("tree"), "--print-store", "--www", Path("www")});
  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.err, "");
}

// --- Findings ------------------------------------------------------------------------------------

// A tree with a finding of each level.
class CheckWithFindings : public CheckProgram {
 protected:
  CheckWithFindings() {
    directory.Write("tree/A/index.json", R"({"@odata.id": "/redfish/v1", "Name": "A"})");
    directory.Write("tree/B/index.json", R"({"Members": [], "Members@odata.count": 1})");
  }

  int StatusWith(const Words& words) const {
    Words all = {Path("tree")};
    all.insert(all.end(), words.begin(), words.end());
    return Check(all).status;
  }
};

TEST_F(CheckWithFindings, EndsWith1AtTheLevelOrAboveIt) {
  EXPECT_EQ(StatusWith({}), 1);
  EXPECT_EQ(StatusWith({"--fail-on", "error"}), 1);
  EXPECT_EQ(StatusWith({"--fail-on", "note"}), 1);
  const Words warnings = {"--select", "redfish-count", "--fail-on"};
  const auto with = [&](const std::string& level) {
    Words words = warnings;
    words.push_back(level);
    return StatusWith(words);
  };
  EXPECT_EQ(with("error"), 0);
  EXPECT_EQ(with("warning"), 1);
  EXPECT_EQ(with("note"), 1);
  EXPECT_EQ(StatusWith({"--select", "redfish-orphan", "--fail-on", "warning"}), 0);
  EXPECT_EQ(StatusWith({"--select", "redfish-orphan", "--fail-on", "note"}), 1);
}

TEST_F(CheckWithFindings, ShowsTheRulesThatAreOnAndNoOthers) {
  const std::string out = Check({"--select", "redfish-count", Path("tree")}).out;
  EXPECT_NE(out.find("[redfish-count]"), std::string::npos) << out;
  EXPECT_EQ(out.find("[key-claimed-twice]"), std::string::npos) << out;
  const std::string rest = Check({"--ignore", "redfish-count", Path("tree")}).out;
  EXPECT_EQ(rest.find("[redfish-count]"), std::string::npos) << rest;
  EXPECT_NE(rest.find("[key-claimed-twice]"), std::string::npos) << rest;
}

TEST_F(CheckWithFindings, HasTheFormatThatIsAskedFor) {
  const auto out_with = [&](const std::string& format) {
    return Check({"--format", format, Path("tree")}).out;
  };
  EXPECT_EQ(out_with("text"), Check({Path("tree")}).out);
  EXPECT_NE(out_with("json").find("\"unused_baseline\""), std::string::npos);
  EXPECT_NE(out_with("sarif").find("\"2.1.0\""), std::string::npos);
  EXPECT_NE(out_with("github").find("::warning file="), std::string::npos);
}

TEST_F(CheckWithFindings, LeavesOutWhatABaselineAccepts) {
  const std::string known = Path("known");
  const Finished written = Check({"--write-baseline", known, Path("tree")});
  EXPECT_EQ(written.status, 0);
  EXPECT_EQ(written.out + written.err, "");
  EXPECT_EQ(StatusWith({"--baseline", known, "--fail-on", "note"}), 0);
  directory.Write("tree/D/index.json",
                  R"({"Name": "D", "A": {"Members": [], "Members@odata.count": 2}})");
  const Finished finished = Check({"--baseline", known, "--fail-on", "warning", Path("tree")});
  EXPECT_EQ(finished.status, 1);
  EXPECT_NE(finished.out.find("D/index.json"), std::string::npos) << finished.out;
  EXPECT_EQ(finished.out.find("B/index.json"), std::string::npos) << finished.out;
}

TEST_F(CheckWithFindings, WritesAllFindingsWhateverABaselineAccepts) {
  const std::string known = Path("known");
  EXPECT_EQ(StatusWith({"--write-baseline", known}), 0);
  EXPECT_EQ(StatusWith({"--baseline", known, "--write-baseline", Path("again")}), 0);
  EXPECT_EQ(StatusWith({"--baseline", Path("again"), "--fail-on", "note"}), 0);
}

TEST_F(CheckWithFindings, EndsWith2WithoutTheBaseline) {
  const Finished finished = Check({"--baseline", Path("none"), Path("tree")});
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "");
  EXPECT_NE(finished.err.find(Path("none")), std::string::npos) << finished.err;
  EXPECT_EQ(StatusWith({"--write-baseline", Path("none/known")}), 2);
}

// --- The store -----------------------------------------------------------------------------------

TEST_F(CheckProgram, PrintsTheStoreAndNothingElse) {
  const Finished finished = Check({"--print-store", Path("tree")});
  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(finished.out.compare(0, 1, "{"), 0);
  EXPECT_EQ(finished.err, "");
}

TEST_F(CheckProgram, SaysWhatACreateSaysBesideTheStore) {
  const Finished finished = Check({"--print-store", Path("bad")});
  EXPECT_EQ(finished.status, 1);
  EXPECT_EQ(finished.out.compare(0, 1, "{"), 0);
  EXPECT_EQ(finished.err, ">>> Error occurs while parsing file " + Path("bad/index.json") + "\n");
}

// --- Output that cannot be written ---------------------------------------------------------------

TEST_F(CheckProgram, EndsWith2WhenTheDiskIsFull) {
  RunOptions full;
  full.in_child = [] { (void)dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
  for (const Words& words :
       {Words{"--help"}, Words{"--list-rules"}, Words{"--explain", "key-case"}, Words{"--version"},
        Words{"--print-store", Path("tree")}, Words{"--format", "json", Path("tree")}}) {
    const Finished finished = Check(words, full);
    EXPECT_EQ(finished.status, 2) << words[0];
    EXPECT_EQ(finished.err, "ostrafel-check: standard output: No space left on device\n");
  }
}

TEST_F(CheckProgram, EndsWith2WithoutStandardOutput) {
  RunOptions closed;
  closed.in_child = [] { (void)close(STDOUT_FILENO); };
  const Finished finished = Check({"--version"}, closed);
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.err, "ostrafel-check: standard output: Bad file descriptor\n");
}

TEST_F(CheckProgram, WritesNoMessageIntoAFileOfItsOwn) {
  RunOptions closed;
  closed.in_child = [] {
    (void)close(STDOUT_FILENO);
    (void)close(STDERR_FILENO);
  };
  const Finished finished = Check({"--print-store", Path("bad")}, closed);
  EXPECT_EQ(finished.status, 2);
}

TEST_F(CheckProgram, EndsWith2WhenMemoryRunsOut) {
  if (!HasMemoryOfItsOwn()) GTEST_SKIP() << "something else uses memory, too";
  std::string elements = "1";
  for (int i = 0; i < 2000000; ++i) elements += ",1";
  directory.Write("tree/index.json", R"({"Name": "Big", "List": [)" + elements + "]}");
  RunOptions small;
  small.in_child = [] {
    const rlimit limit = {32UL << 20U, 32UL << 20U};
    (void)setrlimit(RLIMIT_AS, &limit);
  };
  const Finished finished = Check({"--print-store", Path("tree")}, small);
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.err, "ostrafel-check: out of memory\n");
}

// --- A terminal ----------------------------------------------------------------------------------

// The end of a terminal that the program does not see. One program at a time can be given it.
class Terminal {
 public:
  Terminal() : descriptor_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (grantpt(descriptor_) != 0 || unlockpt(descriptor_) != 0) return;
    (void)ptsname_r(descriptor_, name.data(), name.size());
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() { (void)close(descriptor_); }

  // All that was shown, which must be little: nobody reads before the program has ended.
  std::string Text() const {
    std::string text;
    std::array<char, 4096> buffer = {};
    for (;;) {
      const ssize_t size = read(descriptor_, buffer.data(), buffer.size());
      if (size <= 0) return text;  // an error, when the program has closed its end
      text.append(buffer.data(), static_cast<std::size_t>(size));
    }
  }

  static std::array<char, 64> name;

 private:
  int descriptor_;
};
std::array<char, 64> Terminal::name;

// A tree of two files, of which one takes more than a second to be read. It is refused: what was
// taken from a pipe to look for a byte-order mark cannot be put back.
class CheckOnATerminal : public CheckProgram {
 protected:
  CheckOnATerminal() {
    directory.Write("tree/A/index.json", R"({"&&File": "pipe"})");
    directory.Write("www/file", R"({"A": 1})");
    EXPECT_EQ(mkfifo(Path("www/pipe").c_str(), 0600), 0);
    options.in_child = [] {
      (void)dup2(open(Terminal::name.data(), O_RDWR | O_NOCTTY), STDERR_FILENO);
    };
    // The program opens the pipe when it has begun, however long that takes, and meets the end of
    // what is written when more than the second is over.
    options.on_start = [this](int /*process_id*/) {
      writer = std::thread([this] {
        const int pipe = open(Path("www/pipe").c_str(), O_WRONLY | O_CLOEXEC);
        std::this_thread::sleep_for(std::chrono::milliseconds(1200));
        EXPECT_EQ(write(pipe, R"({"A": 1})", 8), 8);
        EXPECT_EQ(rename(Path("www/file").c_str(), Path("www/pipe").c_str()), 0);
        EXPECT_EQ(close(pipe), 0);
      });
    };
  }

  Finished Check(const Words& more) {
    Words words = {Path("tree"), "--www", Path("www")};
    words.insert(words.end(), more.begin(), more.end());
    Finished finished = ::Check(words, options);
    writer.join();
    return finished;
  }

  Terminal terminal;
  RunOptions options;
  std::thread writer;
};

TEST_F(CheckOnATerminal, ShowsHowFarItIsAndTakesThatAway) {
  EXPECT_EQ(Check({}).status, 1);
  const std::string text = terminal.Text();
  EXPECT_EQ(text.compare(0, 10, "\rsurveyed "), 0) << text;
  EXPECT_NE(text.find(" of 2 files"), std::string::npos) << text;
  ASSERT_GE(text.size(), 2U);
  EXPECT_EQ(text.substr(text.size() - 2), " \r") << text;
}

TEST_F(CheckOnATerminal, ShowsNoProgressWhereItIsToBeQuiet) {
  EXPECT_EQ(Check({"--quiet"}).status, 1);
  EXPECT_EQ(terminal.Text(), "");
}

// --- Colors --------------------------------------------------------------------------------------

class CheckInColors : public CheckProgram {
 protected:
  CheckInColors() {
    directory.Write("tree/index.json", R"({"Members": [], "Members@odata.count": 1})");
  }

  // What the program shows on a terminal or into a pipe.
  std::string Shown(bool on_terminal, const Words& more,
                    const std::vector<std::pair<std::string, std::string>>& environment = {}) {
    const Terminal terminal;
    RunOptions options;
    // Each once: which of two counts is for the emulator or the system to say.
    options.environment = environment;
    const auto is_given = [&](const auto& variable) {
      return std::any_of(environment.begin(), environment.end(),
                         [&](const auto& given) { return given.first == variable.first; });
    };
    const std::vector<std::pair<std::string, std::string>> defaults = {{"NO_COLOR", ""},
                                                                       {"TERM", "xterm"}};
    for (const auto& variable : defaults) {
      if (!is_given(variable)) options.environment.push_back(variable);
    }
    if (on_terminal) {
      options.in_child = [] {
        (void)dup2(open(Terminal::name.data(), O_RDWR | O_NOCTTY), STDOUT_FILENO);
      };
    }
    Words words = {Path("tree")};
    words.insert(words.end(), more.begin(), more.end());
    const Finished finished = ::Check(words, options);
    EXPECT_EQ(finished.status, 0);
    std::string text = on_terminal ? terminal.Text() : finished.out;
    EXPECT_NE(text.find("redfish-count"), std::string::npos) << text;
    return text;
  }

  static bool IsColored(const std::string& text) { return text.find('\033') != std::string::npos; }
};

TEST_F(CheckInColors, ShowsThemOnATerminalOnly) {
  EXPECT_TRUE(IsColored(Shown(true, {})));
  EXPECT_TRUE(IsColored(Shown(true, {"--color", "auto"})));
  EXPECT_FALSE(IsColored(Shown(false, {})));
}

TEST_F(CheckInColors, ShowsThemAsItIsTold) {
  EXPECT_TRUE(IsColored(Shown(false, {"--color", "always"}, {{"NO_COLOR", "1"}})));
  EXPECT_FALSE(IsColored(Shown(true, {"--color", "never"})));
}

TEST_F(CheckInColors, ShowsNoneWhereNobodyWantsThem) {
  EXPECT_FALSE(IsColored(Shown(true, {}, {{"NO_COLOR", "1"}})));
  EXPECT_FALSE(IsColored(Shown(true, {}, {{"TERM", "dumb"}})));
}

}  // namespace
