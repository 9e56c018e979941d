// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/options.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "tool/said_line.h"

namespace ostrafel {

namespace {

// The options of a line that is right.
CheckOptions OptionsOf(const Words& words) { return RightOptions(SaidOf(ParseCommandLine, words)); }

// How a line that is wrong is refused.
std::string ComplaintOf(const Words& words) {
  return Complaint(SaidOf(ParseCommandLine, words), "ostrafel-check");
}

// The names of the rules that are on.
Words RulesOf(Words words) {
  words.emplace_back("tree");
  const CheckOptions options = OptionsOf(words);
  EXPECT_EQ(options.is_on.size(), Rules().size());
  Words names;
  for (const Rule& rule : Rules()) {
    if (options.is_on.at(static_cast<std::size_t>(rule.id))) names.emplace_back(rule.name);
  }
  return names;
}

template <typename Wanted>
Words NamesOf(const Wanted& is_wanted) {
  Words names;
  for (const Rule& rule : Rules()) {
    if (is_wanted(rule)) names.emplace_back(rule.name);
  }
  return names;
}

const Words kLinkRules = {"link-dangling", "link-fragment", "link-uri", "link-repeated"};

TEST(CheckOptions, HaveTheLoadersDefaults) {
  const CheckOptions options = OptionsOf({"tree"});
  EXPECT_EQ(options.static_data_path, "tree");
  EXPECT_EQ(options.uri, "/redfish/v1");
  EXPECT_EQ(options.file_name, "index.json");
  EXPECT_EQ(options.www, "");
  EXPECT_EQ(options.format, Format::kText);
  EXPECT_EQ(options.color, Color::kAuto);
  EXPECT_EQ(options.fail_on, Level::kError);
  EXPECT_FALSE(options.baseline);
  EXPECT_FALSE(options.write_baseline);
  EXPECT_FALSE(options.print_store);
  EXPECT_FALSE(options.quiet);
}

TEST(CheckOptions, TakeThreeArguments) {
  const CheckOptions options = OptionsOf({"tree//", "/redfish/v1/", "other.json"});
  EXPECT_EQ(options.static_data_path, "tree//");
  EXPECT_EQ(options.uri, "/redfish/v1/");
  EXPECT_EQ(options.file_name, "other.json");
}

TEST(CheckOptions, TakeAnEmptyFileNameAsTheDefault) {
  EXPECT_EQ(OptionsOf({"tree", "/redfish", ""}).file_name, "index.json");
}

TEST(CheckOptions, RefuseAWrongNumberOfArguments) {
  EXPECT_EQ(ComplaintOf({}), "no StaticDataPath is given");
  EXPECT_EQ(ComplaintOf({"--quiet"}), "no StaticDataPath is given");
  EXPECT_EQ(ComplaintOf({"tree", "/a", "b.json", "c"}), "one argument too many: 'c'");
}

TEST(CheckOptions, RefuseAnEmptyPathAndUri) {
  const std::string complaint = "StaticDataPath and URI must not be empty";
  EXPECT_EQ(ComplaintOf({""}), complaint);
  EXPECT_EQ(ComplaintOf({"", "/a"}), complaint);
  EXPECT_EQ(ComplaintOf({"tree", ""}), complaint);
}

TEST(CheckOptions, StandBeforeAndBehindTheArguments) {
  const CheckOptions options =
      OptionsOf({"--format=json", "tree", "-q", "/a", "--fail-on", "note"});
  EXPECT_EQ(options.static_data_path, "tree");
  EXPECT_EQ(options.uri, "/a");
  EXPECT_EQ(options.format, Format::kJson);
  EXPECT_EQ(options.fail_on, Level::kNote);
  EXPECT_TRUE(options.quiet);
}

TEST(CheckOptions, EndAtTwoDashes) {
  const CheckOptions options = OptionsOf({"--quiet", "--", "--print-store", "-q"});
  EXPECT_EQ(options.static_data_path, "--print-store");
  EXPECT_EQ(options.uri, "-q");
  EXPECT_FALSE(options.print_store);
}

TEST(CheckOptions, MayBeCutShort) {
  const CheckOptions options = OptionsOf({"--form", "sarif", "--print", "--write", "b", "tree"});
  EXPECT_EQ(options.format, Format::kSarif);
  EXPECT_TRUE(options.print_store);
  EXPECT_EQ(options.write_baseline, "b");
}

TEST(CheckOptions, CountAsTheyWereSaidLast) {
  const CheckOptions options = OptionsOf({"--color", "always", "--color", "never", "tree"});
  EXPECT_EQ(options.color, Color::kNever);
}

TEST(CheckOptions, KnowAllWords) {
  EXPECT_EQ(OptionsOf({"tree", "--format", "text"}).format, Format::kText);
  EXPECT_EQ(OptionsOf({"tree", "--format", "json"}).format, Format::kJson);
  EXPECT_EQ(OptionsOf({"tree", "--format", "sarif"}).format, Format::kSarif);
  EXPECT_EQ(OptionsOf({"tree", "--format", "github"}).format, Format::kGithub);
  EXPECT_EQ(OptionsOf({"tree", "--color", "auto"}).color, Color::kAuto);
  EXPECT_EQ(OptionsOf({"tree", "--color", "always"}).color, Color::kAlways);
  EXPECT_EQ(OptionsOf({"tree", "--color", "never"}).color, Color::kNever);
  EXPECT_EQ(OptionsOf({"tree", "--fail-on", "error"}).fail_on, Level::kError);
  EXPECT_EQ(OptionsOf({"tree", "--fail-on", "warning"}).fail_on, Level::kWarning);
  EXPECT_EQ(OptionsOf({"tree", "--fail-on", "note"}).fail_on, Level::kNote);
}

TEST(CheckOptions, RefuseOtherWords) {
  EXPECT_EQ(ComplaintOf({"tree", "--format", "xml"}),
            "--format knows no 'xml', only text, json, sarif, github");
  EXPECT_EQ(ComplaintOf({"tree", "--color", "Never"}),
            "--color knows no 'Never', only auto, always, never");
  EXPECT_EQ(ComplaintOf({"tree", "--fail-on", ""}),
            "--fail-on knows no '', only error, warning, note");
}

TEST(CheckOptions, NameTheProgramWithoutItsFolder) {
  EXPECT_EQ(ComplaintOf({"tree", "--nonsense"}), "unrecognized option '--nonsense'");
  EXPECT_EQ(ComplaintOf({"tree", "-x"}), "invalid option -- 'x'");
  EXPECT_EQ(ComplaintOf({"tree", "--www"}), "option '--www' requires an argument");
}

TEST(CheckOptions, BeginAfreshAfterAComplaint) {
  (void)ComplaintOf({"-xq", "tree"});
  EXPECT_FALSE(OptionsOf({"tree"}).quiet);
}

TEST(CheckOptions, EndTheIncludeFolderWithOneSlash) {
  EXPECT_EQ(OptionsOf({"--www", "www", "tree"}).www, "www/");
  EXPECT_EQ(OptionsOf({"--www", "www/", "tree"}).www, "www/");
}

TEST(CheckOptions, TakeFiles) {
  const CheckOptions options = OptionsOf({"tree", "--baseline", "a b", "--write-baseline=c"});
  EXPECT_EQ(options.baseline, "a b");
  EXPECT_EQ(options.write_baseline, "c");
}

TEST(CheckOptions, RefuseEmptyNames) {
  const std::string rest = " needs a name that is not empty";
  EXPECT_EQ(ComplaintOf({"tree", "--www="}), "--www" + rest);
  EXPECT_EQ(ComplaintOf({"tree", "--baseline="}), "--baseline" + rest);
  EXPECT_EQ(ComplaintOf({"tree", "--write-baseline", ""}), "--write-baseline" + rest);
}

TEST(ChosenRules, AreTheDefaultUnlessTheLineSaysOtherwise) {
  const Words names = NamesOf([](const Rule& rule) { return rule.is_on; });
  EXPECT_LT(names.size(), Rules().size());
  EXPECT_EQ(RulesOf({}), names);
  EXPECT_EQ(RulesOf({"--select", "default"}), names);
}

TEST(ChosenRules, AreThoseThatAreSelectedAndNoOthers) {
  EXPECT_EQ(RulesOf({"--select", "load-syntax"}), Words{"load-syntax"});
  EXPECT_EQ(RulesOf({"--select", "link-"}), kLinkRules);
  EXPECT_EQ(RulesOf({"--select", "update-slow,load-syntax"}),
            (Words{"load-syntax", "update-slow"}));
  EXPECT_EQ(RulesOf({"--select", "load-s", "--select=update-slow"}),
            (Words{"load-syntax", "update-slow"}));
}

TEST(ChosenRules, CanBeOnesThatAreOff) {
  EXPECT_EQ(RulesOf({"--select", "redfish-required"}), Words{"redfish-required"});
  EXPECT_EQ(RulesOf({"--select", "default,redfish-re"}).size(), Rules().size());
  EXPECT_EQ(RulesOf({"--select", "all"}).size(), Rules().size());
}

TEST(ChosenRules, AreNotThoseThatAreIgnored) {
  EXPECT_EQ(RulesOf({"--ignore", "link-"}), NamesOf([](const Rule& rule) {
              return rule.is_on && std::string(rule.name).compare(0, 5, "link-") != 0;
            }));
  EXPECT_EQ(RulesOf({"--ignore", "all"}), Words{});
}

TEST(ChosenRules, AreIgnoredWhereverThatIsSaid) {
  const Words rest = {"link-dangling", "link-fragment"};
  EXPECT_EQ(RulesOf({"--select", "link-", "--ignore", "link-uri,link-r"}), rest);
  EXPECT_EQ(RulesOf({"--ignore", "link-uri", "--ignore", "link-r", "--select", "link-"}), rest);
}

TEST(ChosenRules, MustBeKnown) {
  const std::string rest = " is no rule, and no rule's name begins so";
  EXPECT_EQ(ComplaintOf({"tree", "--select", "load-syntaxes"}), "--select: 'load-syntaxes'" + rest);
  EXPECT_EQ(ComplaintOf({"tree", "--ignore", "link-,dangling"}), "--ignore: 'dangling'" + rest);
  EXPECT_EQ(ComplaintOf({"tree", "--select", ""}), "--select: ''" + rest);
  EXPECT_EQ(ComplaintOf({"tree", "--select", "link-,"}), "--select: ''" + rest);
  EXPECT_EQ(ComplaintOf({"tree", "--ignore", "link-, key-"}), "--ignore: ' key-'" + rest);
}

// What is said without a tree.
std::string OutputOf(const Words& words) { return AnswerTo(SaidOf(ParseCommandLine, words)); }

TEST(CheckOptions, AnswerWhatNeedsNoTree) {
  EXPECT_EQ(OutputOf({"--version"}).compare(0, 15, "ostrafel-check "), 0);
  EXPECT_EQ(OutputOf({"--help"}).compare(0, 22, "Usage: ostrafel-check "), 0);
  EXPECT_EQ(OutputOf({"-h"}), OutputOf({"--help"}));
  EXPECT_EQ(OutputOf({"--list-rules"}).compare(0, 16, "load-unreadable "), 0);
  EXPECT_EQ(OutputOf({"--explain", "key-glob"}).compare(0, 10, "key-glob: "), 0);
  EXPECT_EQ(OutputOf({"tree", "--help", "--nonsense"}), OutputOf({"--help"}));
}

TEST(CheckOptions, ExplainOneRuleByItsWholeName) {
  const std::string rest = " is no rule; --list-rules names them";
  EXPECT_EQ(ComplaintOf({"--explain", "key-"}), "--explain: 'key-'" + rest);
  EXPECT_EQ(ComplaintOf({"--explain", "all"}), "--explain: 'all'" + rest);
}

}  // namespace

}  // namespace ostrafel
