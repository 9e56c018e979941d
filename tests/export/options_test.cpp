// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/options.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>

#include "export/usage.h"
#include "support/scoped_variable.h"
#include "support/temp_directory.h"
#include "tool/said_line.h"

namespace ostrafel {

namespace {

// The options of a line that is right when "/r tree" follows.
ExportOptions OptionsOf(Words words) {
  words.insert(words.end(), {"/r", "tree"});
  return RightOptions(SaidOf(ParseExportCommandLine, words));
}

// How a line that is wrong is refused.
std::string ComplaintOf(const Words& words) {
  return Complaint(SaidOf(ParseExportCommandLine, words), "ostrafel-export");
}

// The same of options that "/r tree" follows.
std::string ComplaintBefore(Words words) {
  words.insert(words.end(), {"/r", "tree"});
  return ComplaintOf(words);
}

TEST(ExportOptions, AreTheDefaultsUnlessTheLineSaysOtherwise) {
  const ScopedVariable password("OSTRAFEL_PASSWORD", std::nullopt);
  const ExportOptions options = OptionsOf({});
  EXPECT_EQ(options.uri, "/r");
  EXPECT_EQ(options.static_data_path, "tree");
  EXPECT_EQ(options.www, "");
  EXPECT_FALSE(options.is_forced);
  EXPECT_FALSE(options.prints);
  EXPECT_FALSE(options.windows_names);
  EXPECT_FALSE(options.quiet);
  EXPECT_FALSE(options.server.socket_path);
  EXPECT_FALSE(options.server.port);
  EXPECT_FALSE(options.server.password);
}

TEST(ExportOptions, AreTakenOneByOne) {
  EXPECT_TRUE(OptionsOf({"--force"}).is_forced);
  EXPECT_TRUE(OptionsOf({"--windows-names"}).windows_names);
  EXPECT_TRUE(OptionsOf({"--quiet"}).quiet);
  EXPECT_TRUE(OptionsOf({"-q"}).quiet);
  EXPECT_EQ(OptionsOf({"--www", "w"}).www, "w/");
  EXPECT_EQ(OptionsOf({"--socket", "/s"}).server.socket_path, "/s");
  EXPECT_EQ(OptionsOf({"--tcp", "host:7000"}).server.host, "host");
  EXPECT_EQ(OptionsOf({"--tcp", "host:7000"}).server.port, 7000);
  EXPECT_EQ(OptionsOf({"--tcp=7000"}).server.host, "");
  const ExportOptions all =
      OptionsOf({"--force", "--windows-names", "-q", "--www=w/", "--socket=/s"});
  EXPECT_TRUE(all.is_forced && all.windows_names && all.quiet);
  EXPECT_EQ(all.www, "w/");
}

TEST(ExportOptions, OfAResourceToPrintHaveNoDirectory) {
  const auto said = SaidOf(ParseExportCommandLine, {"--print", "/r"});
  ASSERT_TRUE(said.line.options);
  EXPECT_TRUE(said.line.options->prints);
  EXPECT_EQ(said.line.options->uri, "/r");
  EXPECT_EQ(said.line.options->static_data_path, "");
  EXPECT_TRUE(SaidOf(ParseExportCommandLine, {"/r", "--print", "-q", "--tcp=1"}).line.options);
}

TEST(ExportOptions, TakeAPasswordThatNoCommandLineShows) {
  const TempDirectory directory;
  const ScopedVariable password("OSTRAFEL_PASSWORD", "of the environment");
  EXPECT_EQ(OptionsOf({}).server.password, "of the environment");
  const std::string file = directory.Write("password", "of the file\n");
  EXPECT_EQ(OptionsOf({"--password-file", file}).server.password, "of the file");
  EXPECT_THROW((void)LineOf(ParseExportCommandLine,
                            {"--password-file", directory.path("none"), "/r", "tree"}),
               std::runtime_error);
}

TEST(ExportOptions, NeedAUriAndADirectory) {
  EXPECT_EQ(ComplaintOf({}), "no URI is given");
  EXPECT_EQ(ComplaintOf({"--print"}), "no URI is given");
  EXPECT_EQ(ComplaintOf({"/r"}), "no Directory is given");
  EXPECT_EQ(ComplaintOf({"/r", "tree", "more"}), "one argument too many: 'more'");
  EXPECT_EQ(ComplaintOf({"--print", "/r", "tree"}), "one argument too many: 'tree'");
  EXPECT_EQ(ComplaintOf({"", "tree"}), "URI and Directory must not be empty");
  EXPECT_EQ(ComplaintOf({"/r", ""}), "URI and Directory must not be empty");
}

TEST(ExportOptions, RefuseWhatTheyDoNotKnow) {
  EXPECT_EQ(ComplaintBefore({"--nonsense"}), "unrecognized option '--nonsense'");
  EXPECT_EQ(ComplaintBefore({"-x"}), "invalid option -- 'x'");
  EXPECT_EQ(ComplaintOf({"/r", "tree", "--www"}), "option '--www' requires an argument");
}

TEST(ExportOptions, RefuseEmptyArguments) {
  for (const std::string name : {"www", "socket", "password-file"}) {
    EXPECT_EQ(ComplaintBefore({"--" + name + "="}),
              "--" + name + " needs a name that is not empty");
  }
}

TEST(ExportOptions, RefuseWhatIsNoEndpoint) {
  for (const std::string text : {"", "host", "0", "65536", "host:"}) {
    EXPECT_EQ(
        ComplaintBefore({"--tcp=" + text}),
        "--tcp needs a port, or a host and a port with a colon between them, not '" + text + "'");
  }
}

TEST(ExportOptions, RefuseWhatDoesNotGoTogether) {
  EXPECT_EQ(ComplaintBefore({"--socket", "s", "--tcp", "1"}),
            "--socket and --tcp name two servers");
  for (const std::string option : {"--force", "--windows-names", "--www=w"}) {
    EXPECT_EQ(
        ComplaintOf({"--print", option, "/r"}),
        "--print writes no files, so that --force, --windows-names and --www are for nothing");
  }
}

TEST(ExportOptions, AnswerWhatNeedsNoStore) {
  const auto answer_to = [](const Words& words) {
    return AnswerTo(SaidOf(ParseExportCommandLine, words));
  };
  EXPECT_EQ(answer_to({"--help"}), ExportHelpText());
  EXPECT_EQ(answer_to({"-h"}), ExportHelpText());
  EXPECT_EQ(answer_to({"--version"}), ExportVersionText());
  EXPECT_EQ(answer_to({"/r", "--help", "--nonsense"}), ExportHelpText());
}

TEST(ExportHelp, NamesEveryOptionOnLinesOf80Columns) {
  const std::string text = ExportHelpText();
  for (const char* name :
       {"--force", "--print", "--windows-names", "--www", "--socket", "--tcp", "--password-file",
        "OSTRAFEL_PASSWORD", "-q, --quiet", "-h, --help", "--version"}) {
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
