// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/options.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>

#include "diff/usage.h"
#include "support/scoped_variable.h"
#include "support/temp_directory.h"
#include "tool/said_line.h"

namespace ostrafel {

namespace {

// The options of a line that is right when "tree /r" follows.
DiffOptions OptionsOf(Words words) {
  words.insert(words.end(), {"tree", "/r"});
  return RightOptions(SaidOf(ParseDiffCommandLine, words));
}

// How a line that is wrong is refused.
std::string ComplaintOf(const Words& words) {
  return Complaint(SaidOf(ParseDiffCommandLine, words), "ostrafel-diff");
}

// The same of options that "tree /r" follows.
std::string ComplaintBefore(Words words) {
  words.insert(words.end(), {"tree", "/r"});
  return ComplaintOf(words);
}

TEST(DiffOptions, AreTheDefaultsUnlessTheLineSaysOtherwise) {
  const ScopedVariable password("OSTRAFEL_PASSWORD", std::nullopt);
  const DiffOptions options = OptionsOf({});
  EXPECT_EQ(options.static_data_path, "tree");
  EXPECT_EQ(options.uri, "/r");
  EXPECT_EQ(options.file_name, "index.json");
  EXPECT_EQ(options.www, "");
  EXPECT_FALSE(options.is_update);
  EXPECT_FALSE(options.against);
  EXPECT_FALSE(options.server.socket_path);
  EXPECT_FALSE(options.server.port);
  EXPECT_FALSE(options.server.password);
  EXPECT_EQ(options.format, DiffFormat::kText);
  EXPECT_FALSE(options.is_stat);
  EXPECT_EQ(options.ignored, Words{});
  EXPECT_TRUE(options.has_extra);
  EXPECT_EQ(options.color, Color::kAuto);
  EXPECT_FALSE(options.quiet);
  EXPECT_FALSE(options.apply);
  EXPECT_FALSE(options.batch);
}

TEST(DiffOptions, AreTaken) {
  const DiffOptions options = OptionsOf(
      {"--update", "--ignore", "/a*", "--ignore=/b", "--no-extra", "--www", "w", "--format", "text",
       "--stat", "--color=always", "-q", "--apply", "--batch", "12", "--socket", "/s"});
  EXPECT_TRUE(options.is_update);
  EXPECT_EQ(options.ignored, (Words{"/a*", "/b"}));
  EXPECT_FALSE(options.has_extra);
  EXPECT_EQ(options.www, "w/");
  EXPECT_TRUE(options.is_stat);
  EXPECT_EQ(options.color, Color::kAlways);
  EXPECT_TRUE(options.quiet);
  EXPECT_TRUE(options.apply);
  EXPECT_EQ(options.batch, 12U);
  EXPECT_EQ(options.server.socket_path, "/s");
  EXPECT_EQ(OptionsOf({"--format", "json"}).format, DiffFormat::kJson);
  EXPECT_TRUE(OptionsOf({"--quiet"}).quiet);
  EXPECT_EQ(OptionsOf({"--against", "old"}).against, "old");
  EXPECT_EQ(OptionsOf({"--against", "old", "--update"}).against, "old");
}

TEST(DiffOptions, TakeAnEndpoint) {
  const DiffOptions options = OptionsOf({"--tcp", "host:7000"});
  EXPECT_EQ(options.server.host, "host");
  EXPECT_EQ(options.server.port, 7000);
  EXPECT_EQ(OptionsOf({"--tcp", "7000"}).server.host, "");
}

TEST(DiffOptions, TakeAPasswordThatNoCommandLineShows) {
  const TempDirectory directory;
  const ScopedVariable password("OSTRAFEL_PASSWORD", "of the environment");
  EXPECT_EQ(OptionsOf({}).server.password, "of the environment");
  const std::string file = directory.Write("password", "of the file\n");
  EXPECT_EQ(OptionsOf({"--password-file", file}).server.password, "of the file");
  EXPECT_THROW(
      (void)LineOf(ParseDiffCommandLine, {"--password-file", directory.path("none"), "tree", "/r"}),
      std::runtime_error);
}

TEST(DiffOptions, NeedATreeAndItsKey) {
  EXPECT_EQ(ComplaintOf({}), "no StaticDataPath is given");
  EXPECT_EQ(ComplaintOf({"tree"}), "no URI is given");
  EXPECT_EQ(ComplaintOf({"tree", "/r", "f", "more"}), "one argument too many: 'more'");
  EXPECT_EQ(ComplaintOf({"", "/r"}), "StaticDataPath and URI must not be empty");
  EXPECT_EQ(ComplaintOf({"tree", ""}), "StaticDataPath and URI must not be empty");
}

TEST(DiffOptions, TakeTheNameOfTheFiles) {
  const auto said = SaidOf(ParseDiffCommandLine, {"tree", "/r", "--update", "file.json"});
  ASSERT_TRUE(said.line.options);
  EXPECT_EQ(said.line.options->file_name, "file.json");
}

TEST(DiffOptions, RefuseWhatTheyDoNotKnow) {
  EXPECT_EQ(ComplaintBefore({"--nonsense"}), "unrecognized option '--nonsense'");
  EXPECT_EQ(ComplaintBefore({"-x"}), "invalid option -- 'x'");
  EXPECT_EQ(ComplaintOf({"tree", "/r", "--against"}), "option '--against' requires an argument");
  EXPECT_EQ(ComplaintBefore({"--format", "xml"}), "--format knows no 'xml', only text, json");
  EXPECT_EQ(ComplaintBefore({"--color", "red"}),
            "--color knows no 'red', only auto, always, never");
}

TEST(DiffOptions, RefuseEmptyArguments) {
  for (const std::string name : {"against", "socket", "password-file", "www"}) {
    EXPECT_EQ(ComplaintBefore({"--" + name + "="}),
              "--" + name + " needs a name that is not empty");
  }
  EXPECT_EQ(ComplaintBefore({"--ignore", ""}), "--ignore needs a pattern that is not empty");
}

TEST(DiffOptions, RefuseWhatIsNoEndpoint) {
  for (const std::string text : {"", "host", "0", "65536", "host:", ":1", "::1", "-1", "1x"}) {
    EXPECT_EQ(
        ComplaintBefore({"--tcp=" + text}),
        "--tcp needs a port, or a host and a port with a colon between them, not '" + text + "'");
  }
}

TEST(DiffOptions, RefuseWhatIsNoNumberOfResources) {
  for (const std::string text : {"", "0", "-1", "+1", "1x", " 1", "99999999999999999999999"}) {
    EXPECT_EQ(ComplaintBefore({"--apply", "--batch=" + text}),
              "--batch needs a number of resources from 1 on, not '" + text + "'");
  }
}

TEST(DiffOptions, RefuseWhatDoesNotGoTogether) {
  EXPECT_EQ(ComplaintBefore({"--socket", "s", "--tcp", "1"}),
            "--socket and --tcp name two servers");
  EXPECT_EQ(ComplaintBefore({"--against", "t", "--socket", "s"}), "--against needs no server");
  EXPECT_EQ(ComplaintBefore({"--against", "t", "--tcp", "1"}), "--against needs no server");
  EXPECT_EQ(ComplaintBefore({"--against", "t", "--password-file", "f"}),
            "--against needs no server");
  EXPECT_EQ(ComplaintBefore({"--against", "t", "--apply"}),
            "--apply needs a server, not another tree");
  EXPECT_EQ(ComplaintBefore({"--batch", "1"}), "--batch is for --apply");
  EXPECT_EQ(ComplaintBefore({"--stat", "--format", "json"}), "--stat is text");
}

TEST(DiffOptions, AnswerWhatNeedsNoTree) {
  const auto answer_to = [](const Words& words) {
    return AnswerTo(SaidOf(ParseDiffCommandLine, words));
  };
  EXPECT_EQ(answer_to({"--help"}), DiffHelpText());
  EXPECT_EQ(answer_to({"-h"}), DiffHelpText());
  EXPECT_EQ(answer_to({"--version"}), DiffVersionText());
  EXPECT_EQ(answer_to({"tree", "--help", "--nonsense"}), DiffHelpText());
}

TEST(DiffHelp, NamesEveryOptionOnLinesOf80Columns) {
  const std::string text = DiffHelpText();
  for (const char* name :
       {"--update", "--against", "--ignore", "--no-extra", "--www", "--apply", "--batch",
        "--socket", "--tcp", "--password-file", "OSTRAFEL_PASSWORD", "--format", "--stat",
        "--color", "-q, --quiet", "-h, --help", "--version"}) {
    EXPECT_NE(text.find(name), std::string::npos) << name;
  }
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    ASSERT_NE(end, std::string::npos);
    EXPECT_LE(end - at, 80U) << text.substr(at, end - at);
    at = end + 1;
  }
}

}  // namespace

}  // namespace ostrafel
