// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The program as a person or a script runs it: what it prints, how it ends, and what it sends.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "export/export_fixture.h"
#include "model/endpoint.h"

namespace {

using model::Command;

const std::string kHint = "Try 'ostrafel-export --help' for more information.\n";

class ExportProgram : public ExportTest {
 protected:
  ExportProgram() {
    (void)store.Run("HSET | /r | Name | \"A\" | N | 5. | &&Array L &&/r/L | ");
    (void)store.Run("RPUSH | &&/r/L | 1 | &&Object &&/r/L/1");
    (void)store.Run("HSET | &&/r/L/1 | x | true");
    (void)store.Run("HSET | /r/b | &&ObjectRef Up /r | ");
  }

  // Expects a refusal of the line with this sentence.
  void ExpectRefused(const std::vector<std::string>& arguments, const std::string& message) {
    const Finished finished = RunProgram(CommandOf(OSTRAFEL_EXPORT_PROGRAM, arguments));
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.err, "ostrafel-export: " + message + "\n" + kHint);
    EXPECT_EQ(finished.status, 2);
  }

  void ExpectTrouble(const Finished& finished, const std::string& message) {
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.err, "ostrafel-export: " + message + "\n");
    EXPECT_EQ(finished.status, 2);
  }

  const std::string kTop =
      "{\n    \"Name\": \"A\",\n    \"L\": [\n        1,\n        {\n            \"x\": true\n"
      "        }\n    ],\n    \"N\": 5.0\n}\n";
  const std::string kBelow = "{\n    \"Up\": {\n        \"@odata.id\": \"/r\"\n    }\n}\n";
};

// --- What is written and printed -----------------------------------------------------------------

TEST_F(ExportProgram, WritesATree) {
  ExpectWritten(Export({"/r", out}), "2 resources", out);
  const Listing tree_of_store = {
      {"./index.json", "file: " + kTop}, {"./b", "folder"}, {"b/index.json", "file: " + kBelow}};
  EXPECT_EQ(Difference(tree_of_store, ListingOf(out)), "");
}

TEST_F(ExportProgram, CountsOneResource) {
  ExpectWritten(Export({"/r/b", out}), "1 resource", out);
}

TEST_F(ExportProgram, MakesNothingOfAUriThatHasNothing) {
  ExpectTrouble(Export({"/nowhere", out}), "/nowhere: the store holds nothing at or below it");
  EXPECT_FALSE(std::filesystem::exists(out));
}

TEST_F(ExportProgram, MakesAnEmptyTreeOfAnEmptyStore) {
  (void)store.Run("FLUSHALL");
  const Finished finished = Export({"/r", out});
  EXPECT_EQ(finished.out, "0 resources written to " + out + "\n");
  EXPECT_EQ(finished.err, "ostrafel-export: /r: the store holds no resource at or below it\n");
  EXPECT_EQ(finished.status, 0);
  EXPECT_TRUE(std::filesystem::is_empty(out));
}

TEST_F(ExportProgram, IsQuietWhenToldTo) {
  for (const char* option : {"-q", "--quiet"}) {
    const Finished finished = Export({option, "--force", "/r", out});
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.err, "");
    EXPECT_EQ(finished.status, 0);
  }
}

TEST_F(ExportProgram, SaysWhatDoesNotComeBackEvenWhenQuiet) {
  (void)store.Run("HSET | /r | Bound | 2147483647");
  (void)store.Run("SET | /r/other | x");
  const std::string losses =
      "ostrafel-export: /r: Bound: may have been a number of more than 32 bits\n"
      "ostrafel-export: /r/other: holds neither a hash nor a list\n"
      "ostrafel-export: not all comes back: 2 losses at 2 keys\n";
  const Finished quiet = Export({"--quiet", "/r", out});
  EXPECT_EQ(quiet.out, "");
  EXPECT_EQ(quiet.err, losses);
  EXPECT_EQ(quiet.status, 1);
  const Finished finished = Export({"--force", "/r", out});
  EXPECT_EQ(finished.out, "2 resources written to " + out + "\n");
  EXPECT_EQ(finished.err, losses);
  EXPECT_EQ(finished.status, 1);
}

TEST_F(ExportProgram, CountsKeysThatLookAlikeWhenTheyAreShortened) {
  const std::string half(1500, 'k');
  for (const char* middle : {"a", "b", "c"}) {
    (void)store.Run(Command{"SET", "/r/" + half + middle + half, "x"});
  }
  const Finished finished = Export({"-q", "/r", out});
  EXPECT_EQ(std::count(finished.err.begin(), finished.err.end(), '\n'), 4);
  EXPECT_NE(finished.err.find("3 losses at 3 keys\n"), std::string::npos) << finished.err;
}

TEST_F(ExportProgram, PrintsOneResource) {
  const Finished finished = Export({"--print", "/r"});
  EXPECT_EQ(finished.out, kTop);
  EXPECT_EQ(finished.err, "");
  EXPECT_EQ(finished.status, 0);
  EXPECT_EQ(Export({"/r/b", "--print", "-q"}).out, kBelow);
}

TEST_F(ExportProgram, PrintsWhatDoesNotComeBackBesideTheResource) {
  (void)store.Run("HSET | /r/b | Bound | -2147483648");
  const Finished finished = Export({"--print", "/r/b"});
  EXPECT_EQ(finished.out,
            "{\n    \"Bound\": -2147483648,\n    \"Up\": {\n        \"@odata.id\": \"/r\"\n"
            "    }\n}\n");
  EXPECT_EQ(finished.err,
            "ostrafel-export: /r/b: Bound: may have been a number of more than 32 bits\n"
            "ostrafel-export: not all comes back: 1 loss at 1 key\n");
  EXPECT_EQ(finished.status, 1);
}

TEST_F(ExportProgram, PrintsNothingOfWhatIsNoResource) {
  (void)store.Run("SET | /r/s | x");
  (void)store.Run("RPUSH | /r/l | 1");
  for (const std::string uri : {"/none", "/r/s", "/r/l", "/r/"}) {
    ExpectTrouble(Export({"--print", uri}), uri + ": the store holds no resource there");
  }
}

TEST_F(ExportProgram, EscapesWhatATerminalWouldObey) {
  (void)store.Run(Command{"SET", "/r/\x1b[2J\n", "x"});
  EXPECT_EQ(Export({"-q", "/r", out}).err,
            "ostrafel-export: /r/\\x1b[2J\\x0a: holds neither a hash nor a list\n"
            "ostrafel-export: not all comes back: 1 loss at 1 key\n");
}

TEST_F(ExportProgram, NamesFoldersForWindows) {
  (void)store.Run("HSET | /r/a:b | x | 1");
  (void)store.Run("HSET | /r/con | x | 1");
  (void)store.Run("HSET | /r/B | x | 1");
  const Finished finished = Export({"--windows-names", "/r", out});
  EXPECT_EQ(finished.status, 1) << finished.err;
  const Listing written = ListingOf(out);
  EXPECT_EQ(written.count("B/index.json") + written.count("b/index.json"), 1U);
  for (const auto& [path, content] : written) EXPECT_EQ(path.find(':'), std::string::npos) << path;
  EXPECT_EQ(written.count("con/index.json"), 0U);
}

TEST_F(ExportProgram, TellsWhenNobodyTakesWhatItPrints) {
  RunOptions options;
  options.in_child = [] { (void)dup2(open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO); };
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--print", "/r"}, std::vector<std::string>{"/r", out}}) {
    const Finished finished = Export(arguments, options);
    EXPECT_NE(finished.err.find("No space left on device"), std::string::npos) << finished.err;
    EXPECT_EQ(finished.status, 2);
  }
}

// --- The command line ----------------------------------------------------------------------------

TEST_F(ExportProgram, HelpsAndTellsItsVersion) {
  for (const char* option : {"-h", "--help"}) {
    const Finished help = RunProgram(CommandOf(OSTRAFEL_EXPORT_PROGRAM, {option}));
    EXPECT_EQ(help.out.rfind("Usage: ostrafel-export [options] <URI> <Directory>\n", 0), 0U);
    EXPECT_EQ(help.err, "");
    EXPECT_EQ(help.status, 0);
  }
  const Finished version = RunProgram(CommandOf(OSTRAFEL_EXPORT_PROGRAM, {"--version"}));
  EXPECT_EQ(version.out.rfind("ostrafel-export ", 0), 0U);
  EXPECT_EQ(std::count(version.out.begin(), version.out.end(), '\n'), 1);
  EXPECT_EQ(version.status, 0);
}

TEST_F(ExportProgram, RefusesLinesThatAreWrong) {
  ExpectRefused({}, "no URI is given");
  ExpectRefused({"--print"}, "no URI is given");
  ExpectRefused({"/r"}, "no Directory is given");
  ExpectRefused({"/r", out, "x"}, "one argument too many: 'x'");
  ExpectRefused({"--print", "/r", "x"}, "one argument too many: 'x'");
  ExpectRefused({"", out}, "URI and Directory must not be empty");
  ExpectRefused({"/r", ""}, "URI and Directory must not be empty");
  const std::string print =
      "--print writes no files, so that --force, --windows-names and --www are for nothing";
  ExpectRefused({"--print", "--force", "/r"}, print);
  ExpectRefused({"--print", "--windows-names", "/r"}, print);
  ExpectRefused({"--print", "--www", place.path(), "/r"}, print);
  ExpectRefused({"--socket", "/x", "--tcp", "1", "/r", out}, "--socket and --tcp name two servers");
  EXPECT_EQ(ListingOf(place.path()), Listing());
}

TEST_F(ExportProgram, RefusesAnIncludeFolderThatIsNone) {
  const Finished finished = Export({"--www", place.path("none"), "/r", out});
  EXPECT_NE(finished.err.find(place.path("none")), std::string::npos) << finished.err;
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(ListingOf(place.path()), Listing());
}

// --- The server ----------------------------------------------------------------------------------

TEST_F(ExportProgram, FindsTheServerOfTheLoader) {
  ExpectWritten(RunProgram(CommandOf(OSTRAFEL_EXPORT_PROGRAM, {"/r", out})), "2 resources", out);
}

TEST_F(ExportProgram, MakesNothingWithoutAServer) {
  const Finished finished =
      RunProgram(CommandOf(OSTRAFEL_EXPORT_PROGRAM, {"--socket", place.path("none"), "/r", out}));
  EXPECT_EQ(finished.out, "");
  EXPECT_NE(finished.err.find("No such file or directory"), std::string::npos) << finished.err;
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(ListingOf(place.path()), Listing());
}

TEST_F(ExportProgram, AuthenticatesWithThePasswordThatItIsTold) {
  (void)store.Run("ACL | SETUSER | default | >secret");
  const std::string file = place.Write("password", "secret\n");
  const Finished with_file = Export({"--password-file", file, "/r", place.path("1")});
  RunOptions options;
  options.environment = {{"OSTRAFEL_PASSWORD", "secret"}};
  const Finished with_variable = Export({"/r", place.path("2")}, options);
  options.environment = {{"OSTRAFEL_PASSWORD", "wrong"}};
  const Finished with_other = Export({"/r", place.path("3")}, options);
  const Finished without = Export({"/r", place.path("4")});
  (void)store.Run("ACL | SETUSER | default | nopass");
  ExpectWritten(with_file, "2 resources", place.path("1"));
  ExpectWritten(with_variable, "2 resources", place.path("2"));
  for (const auto& [finished, word] :
       {std::pair(with_other, "WRONGPASS"), std::pair(without, "NOAUTH")}) {
    EXPECT_EQ(finished.out, "");
    EXPECT_NE(finished.err.find(word), std::string::npos) << finished.err;
    EXPECT_EQ(finished.status, 2);
  }
  EXPECT_EQ(ListingOf(place.path("3")), Listing());
  EXPECT_FALSE(ListingOf(place.path()).count("./3") != 0 ||
               ListingOf(place.path()).count("./4") != 0);
}

// --- What is sent --------------------------------------------------------------------------------

std::string Line(const Command& command) {
  std::string line;
  for (const std::string& word : command) line += (line.empty() ? "" : " | ") + word;
  return line;
}

TEST_F(ExportProgram, SendsWhatReadsAndNothingElse) {
  ExpectWritten(RecordedExport({"/r", out}), "2 resources", out);
  std::vector<std::vector<std::string>> flights;
  for (const model::Flight& flight : recording.flights) {
    std::vector<std::string> lines;
    for (const Command& command : flight.commands) lines.push_back(Line(command));
    flights.push_back(lines);
  }
  const std::vector<std::vector<std::string>> expected = {
      {"SCAN | 0 | MATCH | */r/* | COUNT | 1000"},
      {"HGETALL | /r", "HGETALL | /r/b"},
      {"LRANGE | &&/r/L | 0 | -1"},
      {"HGETALL | &&/r/L/1"},
      {"MULTI", "KEYS | */r/*", "HGETALL | /r", "LRANGE | &&/r/L | 0 | -1", "HGETALL | &&/r/L/1",
       "HGETALL | /r/b", "EXEC"}};
  EXPECT_EQ(flights, expected);
}

TEST_F(ExportProgram, SendsLittleToPrintOneResource) {
  EXPECT_EQ(RecordedExport({"--print", "/r/b"}).status, 0);
  EXPECT_EQ(Sent(), "HGETALL | /r/b\n--\nMULTI\nHGETALL | /r/b\nEXEC\n");
}

TEST_F(ExportProgram, NeedsNoRightToWrite) {
  const std::string before = StoreText();
  (void)store.Run("ACL | SETUSER | default | +@all | -@write");
  const Finished small = Export({"/r", out});
  (void)store.Run("ACL | SETUSER | default | +@all");
  ExpectWritten(small, "2 resources", out);
  EXPECT_EQ(StoreText(), before);
}

TEST_F(ExportProgram, SendsNothingElseForMoreKeysThanATransactionHolds) {
  StoreManyParts("/r/many");
  EXPECT_EQ(RecordedExport({"-q", "/r", out}).status, 0);
  const std::set<std::string> reads = {"SCAN", "KEYS", "TYPE", "HGETALL", "LRANGE"};
  for (const Command& command : model::CommandsOf(recording.flights)) {
    ASSERT_EQ(reads.count(command.front()), 1U) << Line(command);
  }
}

}  // namespace
