// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/baseline.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "base/message.h"
#include "support/temp_directory.h"

namespace ostrafel {

namespace {

using Lines = std::vector<std::string>;

Finding FindingOf(RuleId rule, const std::string& path,
                  const std::optional<std::string>& pointer = {}) {
  Finding finding = {};
  finding.rule = rule;
  finding.place.path = path;
  finding.place.pointer = pointer;
  return finding;
}

class Baselines : public ::testing::Test {
 protected:
  Baselines() { options.static_data_path = "tree"; }
  ~Baselines() override { Messages = {}; }

  // The text of the baseline that accepts the findings, less its first line.
  std::string Written(const Findings& findings) {
    EXPECT_TRUE(WriteBaseline(options, path, findings));
    std::ifstream file(path);
    std::string first;
    EXPECT_TRUE(std::getline(file, first));
    EXPECT_EQ(first.front(), '#');
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // The lines of the entries that a text holds, or the message of why it is refused.
  Lines Read(const std::string& text) {
    directory.Write("baseline", text);
    std::string messages;
    Messages.collector = &messages;
    const auto entries = ReadBaseline(path);
    Messages.collector = nullptr;
    if (!entries) return {messages.substr(messages.find("baseline:"))};
    Lines lines;
    for (const BaselineEntry& entry : *entries) {
      lines.push_back(std::to_string(entry.line) + " " + BaselineLine(entry));
    }
    return lines;
  }

  TempDirectory directory;
  std::string path = directory.path("baseline");
  CheckOptions options;
};

TEST_F(Baselines, AreSortedAndHaveEachEntryOnce) {
  EXPECT_EQ(
      Written({FindingOf(RuleId::kLinkDangling, "tree/b/index.json", "/A/@odata.id"),
               FindingOf(RuleId::kKeyGlob, "tree/a/index.json", "/B"),
               FindingOf(RuleId::kLinkDangling, "tree/a/index.json", "/C"),
               FindingOf(RuleId::kLinkDangling, "tree/b/index.json", "/A/@odata.id"),
               FindingOf(RuleId::kRedfishOrphan, "tree/a/index.json", ""),
               FindingOf(RuleId::kLoadSyntax, "/www/x.json"), FindingOf(RuleId::kUpdateSlow, "")}),
      "key-glob\ta/index.json\t/B\n"
      "link-dangling\ta/index.json\t/C\n"
      "link-dangling\tb/index.json\t/A/@odata.id\n"
      "load-syntax\t/www/x.json\n"
      "redfish-orphan\ta/index.json\n"
      "update-slow\t-\n");
}

TEST_F(Baselines, EscapeWhatALineCannotHold) {
  EXPECT_EQ(BaselineLine({"key-glob", "a\tb\nc\\d\xFF", "/\xC3\xA9 "}),
            "key-glob\ta\\x09b\\x0ac\\\\d\\xff\t/\xC3\xA9\\x20");
  EXPECT_EQ(BaselineLine({"key-glob", "-", ""}), "key-glob\t\\x2d");
}

TEST_F(Baselines, AcceptWhatTheyWereWrittenFor) {
  const Findings all = {FindingOf(RuleId::kKeyGlob, "tree/a\tb\nc\\x41\xFF/\r", "/\\ "),
                        FindingOf(RuleId::kKeyGlob, "-", "/#"), FindingOf(RuleId::kUpdateSlow, "")};
  Findings left = all;
  (void)Written(all);
  const auto baseline = ReadBaseline(path);
  ASSERT_TRUE(baseline);
  EXPECT_EQ(ApplyBaseline(options, *baseline, &left).size(), 0U);
  EXPECT_EQ(left.size(), 0U);
}

TEST_F(Baselines, AcceptEveryFindingOfTheRuleAtThePlaceAndNoOther) {
  Findings findings = {
      FindingOf(RuleId::kKeyGlob, "tree/a", "/B"), FindingOf(RuleId::kKeyGlob, "tree/a", "/B"),
      FindingOf(RuleId::kKeyCase, "tree/a", "/B"), FindingOf(RuleId::kKeyGlob, "tree/b", "/B"),
      FindingOf(RuleId::kKeyGlob, "tree/a", "/C"), FindingOf(RuleId::kKeyGlob, "tree/a")};
  EXPECT_TRUE(ApplyBaseline(options, {{"key-glob", "a", "/B"}}, &findings).empty());
  ASSERT_EQ(findings.size(), 4U);
  EXPECT_EQ(findings[0].rule, RuleId::kKeyCase);
  EXPECT_EQ(findings[1].place.path, "tree/b");
  EXPECT_EQ(findings[2].place.pointer, "/C");
  EXPECT_EQ(findings[3].place.pointer, std::nullopt);
}

TEST_F(Baselines, TellWhichEntriesAcceptNothing) {
  Findings findings = {FindingOf(RuleId::kKeyGlob, "tree/a", "/B")};
  const auto unused = ApplyBaseline(options,
                                    {{"key-glob", "c", "", 3},
                                     {"key-glob", "a", "/B", 4},
                                     {"key-case", "a", "/B", 5},
                                     {"key-glob", "a", "/B", 6}},
                                    &findings);
  ASSERT_EQ(unused.size(), 2U);
  EXPECT_EQ(unused[0].line, 3U);
  EXPECT_EQ(unused[1].line, 5U);
}

TEST_F(Baselines, AreReadAsAPersonMayLeaveThem) {
  EXPECT_EQ(Read("# why\n\nkey-glob\ta/index.json\t/B\r\n#\nlink-dangling\t-"),
            (Lines{"3 key-glob\ta/index.json\t/B", "5 link-dangling\t-"}));
  EXPECT_EQ(Read("key-glob\ta\t\n"), Lines{"1 key-glob\ta"});
  EXPECT_EQ(Read("key-glob\t\\x2D\\x2d\t/\\\\x41\\xFf"), Lines{"1 key-glob\t--\t/\\\\x41\\xff"});
  EXPECT_EQ(Read(""), Lines{});
}

TEST_F(Baselines, AreRefusedWithTheLineThatIsWrong) {
  EXPECT_EQ(Read("\nkey-globs\ta\n"), Lines{"baseline:2: no rule is called \"key-globs\"\n"});
  EXPECT_EQ(Read("key-glob a /B\n"), Lines{"baseline:1: no rule is called \"key-glob a /B\"\n"});
  EXPECT_EQ(Read("key-\x1B\ta\n"), Lines{"baseline:1: no rule is called \"key-\\x1b\"\n"});
  const Lines no_file = {"baseline:1: a tab and a file are missing behind the rule\n"};
  EXPECT_EQ(Read("key-glob\n"), no_file);
  EXPECT_EQ(Read("key-glob\t\t/B\n"), no_file);
  EXPECT_EQ(Read("key-glob\ta\t/B\t\t\n"),
            Lines{"baseline:1: there is a tab behind the pointer\n"});
  const Lines wrong_escape = {
      "baseline:1: a backslash stands before neither another nor x and two digits\n"};
  for (const char* field : {"\\", "a\\n", "\\x", "\\x4", "\\xg0", "\\x0g", "\\X41", "\\\\\\"}) {
    EXPECT_EQ(Read(std::string("key-glob\t") + field), wrong_escape) << field;
    EXPECT_EQ(Read(std::string("key-glob\ta\t") + field), wrong_escape) << field;
  }
}

TEST_F(Baselines, SayWhyAFileCannotBeReadOrWritten) {
  std::string messages;
  Messages.collector = &messages;
  EXPECT_FALSE(ReadBaseline("/nowhere/file"));
  EXPECT_EQ(messages, "ostrafel-check: /nowhere/file: No such file or directory\n");
  messages.clear();
  EXPECT_FALSE(ReadBaseline("/"));
  EXPECT_EQ(messages, "ostrafel-check: /: Is a directory\n");
  messages.clear();
  EXPECT_FALSE(WriteBaseline(options, "/nowhere/file", {}));
  EXPECT_EQ(messages, "ostrafel-check: /nowhere/file: No such file or directory\n");
  messages.clear();
  EXPECT_FALSE(WriteBaseline(options, "/dev/full", {}));
  EXPECT_EQ(messages, "ostrafel-check: /dev/full: No space left on device\n");
}

}  // namespace

}  // namespace ostrafel
