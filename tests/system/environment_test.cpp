// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What the program inherits: variables, a locale, descriptors.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>

#include "support/scoped_variable.h"
#include "system/system_fixture.h"

namespace {

constexpr const char* kDocument =
    R"({"A": 3.5, "B": -0.125, "C": 1234567, "D": 1e20, "E": [0.5, 3000000000], "F": 1.5e-3})";
constexpr const char* kDump =
    "list | &&/r/E | 0.5\n"
    "list | &&/r/E | 2147483647\n"
    "hash | /r | &&Array E &&/r/E | \n"
    "hash | /r | A | 3.5\n"
    "hash | /r | B | -0.125\n"
    "hash | /r | C | 1234567\n"
    "hash | /r | D | 100000000000000000000.\n"
    "hash | /r | F | 0.0015\n";

class Environment : public SystemTest {
 protected:
  // Creates and updates, and expects that all is as usual.
  void ExpectTheUsual(const RunOptions& options = {}) {
    const std::string file = tree.Write("a.json", kDocument);
    (void)store.Run("FLUSHALL");
    for (const char* action : {"create", "update"}) {
      const Finished run = Ostrafel({action, file, "/r"}, options);
      EXPECT_EQ(run.out, kSuccessLine);
      EXPECT_EQ(run.err, "");
      EXPECT_EQ(run.status, 0);
      EXPECT_EQ(store.Dump(), kDump);
    }
  }
};

TEST_F(Environment, ADecimalCommaChangesNothing) {
  const std::string locales = tree.MakeFolder("locales");
  const Finished made =
      RunProgram({"/usr/bin/localedef", "-f", "UTF-8", "-i", "de_DE", locales + "/de_DE.UTF-8"});
  ASSERT_EQ(made.status, 0) << made.err << "localedef needs Debian's package locales";
  const ScopedVariable path("LOCPATH", locales);
  const ScopedVariable language("LANGUAGE", "de");
  const ScopedVariable locale("LC_ALL", "de_DE.UTF-8");
  // The locale is in force for programs that ask for it.
  const Finished check = RunProgram({"/usr/bin/locale", "-k", "decimal_point", "thousands_sep"});
  ASSERT_EQ(check.out, "decimal_point=\",\"\nthousands_sep=\".\"\n") << check.err;

  ExpectTheUsual();
  const std::string bad = tree.Write("b.json", R"({"A": 3,5})");
  ExpectFailure({"create", bad, "/r"},
                "error: on line 1: string or '}' expected near '5'\nThe content of " + bad +
                    " is not a valid JSON data.\n");
  publishes_socket = false;
  RuntimeFiles files;
  files.port = std::nullopt;
  Publish(files);
  ExpectFailure({"create", bad, "/r"},
                "fopen: No such file or directory\nFailed to connect to Redis\n");
}

TEST_F(Environment, AnEmptyEnvironmentChangesNothing) {
  RunOptions options;
  options.in_child = [] { (void)clearenv(); };
  ExpectTheUsual(options);
}

TEST_F(Environment, NoHomeAndOddVariablesChangeNothing) {
  const ScopedVariable home("HOME", std::nullopt);
  const ScopedVariable separators("IFS", "/e");
  const ScopedVariable grep_options("GREP_OPTIONS", "-v");
  const ScopedVariable posix("POSIXLY_CORRECT", "1");
  const ScopedVariable startup("ENV", "/nonexistent");
  const ScopedVariable columns("COLUMNS", "1");
  ExpectTheUsual();
}

TEST_F(Environment, WithoutTheToolsOfTheShellThereIsNoServer) {
  const std::string file = tree.Write("a.json", R"({"A": 1})");
  const ScopedVariable path("PATH", tree.path());
  const Finished run = Ostrafel({"create", file, "/r"});
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.status, 255);
  EXPECT_EQ(recording.connections, 0);
  // Without a directory the runtime files are looked for in the root.
  const std::string end = "fopen: No such file or directory\nFailed to connect to Redis\n";
  ASSERT_GE(run.err.size(), end.size()) << run.err;
  EXPECT_EQ(run.err.substr(run.err.size() - end.size()), end);
  // The shell's children complain of the missing tools all at once, each piece by piece: it is
  // known what they print, but not in which order.
  std::string complaints = run.err.substr(0, run.err.size() - end.size());
  std::string expected;
  for (const char* tool : {"dirname", "grep", "awk", "tr"}) {
    expected += "sh: 1: " + std::string(tool) + ": not found\n";
  }
  std::sort(complaints.begin(), complaints.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(complaints, expected) << run.err;
}

// Which of the standard descriptors the next test closes: one bit for each.
int closed_descriptors = 0;

TEST_F(Environment, ClosedStandardDescriptorsChangeNothing) {
  const std::string file = tree.Write("a.json", kDocument);
  RunOptions options;
  options.in_child = [] {
    for (int descriptor = 0; descriptor < 3; ++descriptor) {
      if ((closed_descriptors & 1 << descriptor) != 0) (void)close(descriptor);
    }
  };
  for (closed_descriptors = 0; closed_descriptors < 8; ++closed_descriptors) {
    (void)store.Run("FLUSHALL");
    for (const char* action : {"create", "update"}) {
      const Finished run = Ostrafel({action, file, "/r"}, options);
      EXPECT_EQ(run.out, (closed_descriptors & 2) == 0 ? kSuccessLine : "") << closed_descriptors;
      EXPECT_EQ(run.err, "") << closed_descriptors;
      EXPECT_EQ(run.status, 0) << closed_descriptors;
      EXPECT_EQ(store.Dump(), kDump) << closed_descriptors;
    }
    // A message that got into the connection would be a command there.
    const Finished failed = Ostrafel({"update", "/x\nFLUSHALL\ny", "/r"}, options);
    EXPECT_EQ(failed.out, "");
    EXPECT_EQ(failed.err, (closed_descriptors & 4) != 0
                              ? ""
                              : "Failed to check path /x\nFLUSHALL\ny.\n"
                                "Input path should be a file or directory\n");
    EXPECT_EQ(failed.status, 255);
    EXPECT_EQ(Sent(), "") << closed_descriptors;
    EXPECT_EQ(store.Dump(), kDump) << closed_descriptors;
  }
}

TEST_F(Environment, FullOutputsChangeNothing) {
  RunOptions options;
  options.in_child = [] {
    (void)dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
    (void)dup2(STDOUT_FILENO, STDERR_FILENO);
  };
  const std::string file = tree.Write("a.json", kDocument);
  EXPECT_EQ(Ostrafel({"create", file, "/r"}, options).status, 0);
  EXPECT_EQ(store.Dump(), kDump);
  EXPECT_EQ(Ostrafel({"update", "/nowhere", "/r"}, options).status, 255);
  EXPECT_EQ(store.Dump(), kDump);
}

}  // namespace
