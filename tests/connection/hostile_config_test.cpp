// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Hostile lines of the server's configuration, given to the real shell pipeline: no text of the
// file is ever run as a command, and whatever the line holds gives a directory or none.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/files.h"
#include "connection/connection_config.h"
#include "connection/connection_state.h"
#include "support/sandbox.h"
#include "support/temp_directory.h"

namespace ostrafel {

namespace {

using namespace std::string_literals;

// The server's configuration is the test's to write. Its runtime files are in runtime, a folder
// without a blank in its path.
class HostileConfig : public testing::Test {
 protected:
  HostileConfig() : saved_(ReadFile(kRedisConf)) { Connection = {}; }
  ~HostileConfig() override {
    WriteFile(kRedisConf, saved_);
    Connection = {};
  }

  // Reads the configuration with this content of redis.conf. The messages of the shell's commands
  // are not the point here.
  static std::optional<ConnectionConfig> Read(const std::string& content) {
    Connection = {};
    WriteFile(kRedisConf, content);
    testing::internal::CaptureStderr();
    std::optional<ConnectionConfig> config = ReadConnectionConfig();
    (void)testing::internal::GetCapturedStderr();
    return config;
  }

  // Puts runtime files into a folder below runtime, whatever its name. Their socket path is the
  // folder's, so that a test sees from which folder they were read.
  void PutFiles(const std::string& folder) const {
    runtime.Write(folder + "/redis.port", "0");
    runtime.Write(folder + "/redis.unixsocket", runtime.path(folder));
    runtime.Write(folder + "/redis.requirepass", "");
  }

  TempDirectory runtime;

 private:
  const std::string saved_;
};

// Commands that would leave a file behind, in every way that a shell knows to run a command. blank
// is what parts their words.
std::vector<std::string> Injections(const std::string& traces, const std::string& blank) {
  const std::string command = "touch" + blank + traces + "/touched";
  return {
      "$(" + command + ")",
      "`" + command + "`",
      ";" + command + ";",
      "x;" + command,
      "|" + command,
      "||" + command,
      "&" + command + "&",
      "&&" + command,
      "/x$(" + command + ")/redis.sock",
      "'$(" + command + ")'",
      "\"$(" + command + ")\"",
      "\";" + command + ";\"",
      "';" + command + ";'",
      ")';" + command + ";'",
      ");" + command + ";(",
      "}';" + command + ";'",
      "\\`" + command + "\\`",
      "<(" + command + ")",
      ">(" + command + ")",
      "${x:-$(" + command + ")}",
      "$((x[$(" + command + ")]))",
      "(" + command + ")",
      "{" + blank + command + ";}",
      "x\";system(\"" + command + "\");\"",
      ">" + traces + "/redirected",
      "x>>" + traces + "/redirected",
      "$(>" + traces + "/redirected)",
  };
}

// The names in a folder.
std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename());
  }
  return names;
}

TEST_F(HostileConfig, NoTextOfTheLineIsRun) {
  const std::string traces = runtime.MakeFolder("traces");
  for (const char* blank : {"${IFS}", " "}) {
    for (const std::string& value : Injections(traces, blank)) {
      for (const std::string& content :
           {"unixsocket " + value + "\n",
            "unixsocket /x/redis.sock " + value + "\n" + value + "\n"}) {
        (void)Read(content);
        EXPECT_EQ(NamesIn(traces), std::vector<std::string>()) << content;
      }
    }
  }
}

// Without this the test above could pass for want of a command that works.
TEST_F(HostileConfig, ACommandThatAShellRunsLeavesATrace) {
  const std::string traces = runtime.MakeFolder("traces");
  for (const char* blank : {"${IFS}", " "}) {
    const std::string command = "echo " + Injections(traces, blank).front();
    const Pipe shell(popen(command.c_str(), "r"));
    ASSERT_TRUE(shell);
    EXPECT_EQ(std::fgetc(shell.get()), '\n');
    EXPECT_EQ(NamesIn(traces), std::vector<std::string>{"touched"});
    std::filesystem::remove(traces + "/touched");
  }
}

// A shell expands nothing in what a command printed but patterns of file names.
TEST_F(HostileConfig, WhatAShellWouldExpandIsPartOfTheDirectory) {
  const std::vector<std::string> folders = {
      "$HOME", "${HOME}", "$(true)", "`true`", "'quoted'", "\"quoted\"", "'",
      "\"",    "~",       "!!",      "#",      "a;b",      "a&b",        "a|b",
      "(",     ")",       "{a,b}",   "<a>",    "-n",       "--help",     "%s%n",
      "a\\b",  "$",       "\x01",    "\r",     "\x1B[2J",  "a,b=c:d",    "\xC3\xA9",
  };
  for (const std::string& folder : folders) {
    PutFiles(folder);
    const std::optional<ConnectionConfig> config =
        Read("unixsocket " + runtime.path(folder) + "/redis.sock\n");
    ASSERT_TRUE(config) << folder;
    EXPECT_EQ(config->socket_path, runtime.path(folder)) << folder;
  }
}

TEST_F(HostileConfig, APatternStandsForTheFileThatItMatches) {
  PutFiles("folder");
  const std::string pattern = runtime.path() + "/f[o]l*/redis.soc?";
  EXPECT_FALSE(Read("unixsocket " + pattern + "\n"));  // matches nothing: a folder of that name
  runtime.Write("folder/redis.sock", "");
  const std::optional<ConnectionConfig> config = Read("unixsocket " + pattern + "\n");
  ASSERT_TRUE(config);
  EXPECT_EQ(config->socket_path, runtime.path("folder"));
}

// dirname takes such a value for an option; whatever it then prints is no folder of runtime files.
TEST_F(HostileConfig, AValueThatBeginsWithADashGivesNoRuntimeFiles) {
  if (std::filesystem::exists("/redis.port")) GTEST_SKIP() << "this machine has a /redis.port";
  for (const char* value : {"-", "--", "-x", "--version", "--help", "-z", "--zero", "-n"}) {
    EXPECT_FALSE(Read("unixsocket "s + value + "\n")) << value;
    EXPECT_FALSE(Read("unixsocket "s + value + " /x/redis.sock\n")) << value;
  }
}

TEST_F(HostileConfig, BlanksAroundTheValueDoNotCount) {
  PutFiles("folder");
  const std::string socket = runtime.path("folder") + "/redis.sock";
  for (const std::string& line :
       {"unixsocket    " + socket, "unixsocket \t " + socket + "\t\t", "unixsocket " + socket + " ",
        "unixsocket " + socket + " 700 $(false)"}) {
    const std::optional<ConnectionConfig> config = Read(line + "\n");
    ASSERT_TRUE(config) << line;
    EXPECT_EQ(config->socket_path, runtime.path("folder")) << line;
  }
}

TEST_F(HostileConfig, ALineWithoutAValueGivesNoDirectory) {
  if (std::filesystem::exists("/redis.port")) GTEST_SKIP() << "this machine has a /redis.port";
  for (const char* line : {"unixsocket ", "unixsocket \t", "unixsocket", "unixsocket  \r"}) {
    EXPECT_FALSE(Read(line + "\n"s)) << line;
  }
}

TEST_F(HostileConfig, AFileWithoutAFinalLineEndIsRead) {
  PutFiles("folder");
  EXPECT_TRUE(Read("unixsocket " + runtime.path("folder") + "/redis.sock"));
  EXPECT_TRUE(Read("port 0\nunixsocket " + runtime.path("folder") + "/redis.sock"));
}

TEST_F(HostileConfig, AnEmptyFileGivesNoDirectory) {
  if (std::filesystem::exists("/redis.port")) GTEST_SKIP() << "this machine has a /redis.port";
  EXPECT_FALSE(Read(""));
  EXPECT_FALSE(Read("\n\n\n"));
}

// grep calls a file with a NUL a binary one; what it then says on standard output is taken for the
// line, and it depends on its version.
TEST_F(HostileConfig, ANulInTheFileDoesNoHarm) {
  PutFiles("folder");
  const std::string socket = runtime.path("folder") + "/redis.sock";
  for (const std::string& content :
       {"unixsocket " + socket + "\0x\n"s, "\0\nunixsocket "s + socket + "\n", "unixsocket \0\n"s,
        "unixsocket " + socket + "\n\0"s}) {
    const std::optional<ConnectionConfig> config = Read(content);
    EXPECT_TRUE(!config || config->socket_path == runtime.path("folder"));
  }
}

TEST_F(HostileConfig, AVeryLongLineGivesNoRuntimeFiles) {
  if (std::filesystem::exists("/redis.port")) GTEST_SKIP() << "this machine has a /redis.port";
  const std::string traces = runtime.MakeFolder("traces");
  for (const std::size_t length : {1022U, 1023U, 1024U, 5000U, 70000U, 1000000U}) {
    const std::string name(length, 'd');
    EXPECT_FALSE(Read("unixsocket /" + name + "/redis.sock\n")) << length;
    EXPECT_FALSE(Read("unixsocket /" + name + "$(touch${IFS}" + traces + "/a)/s\n")) << length;
    EXPECT_FALSE(Read(name + "\nunixsocket " + name + "\n")) << length;
  }
  EXPECT_EQ(NamesIn(traces), std::vector<std::string>());
}

}  // namespace

}  // namespace ostrafel
