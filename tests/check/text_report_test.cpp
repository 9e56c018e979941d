// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/report_fixture.h"

namespace ostrafel {

namespace {

class TextReports : public ReportTest {
 protected:
  // The report, in which the folder of the test has no name, less the last line.
  std::string Text(bool has_colors = false) {
    const std::string text = Shortened(TextReport(options, report, has_colors));
    return options.quiet ? text : text.substr(0, text.rfind('\n', text.size() - 2) + 1);
  }
};

TEST_F(TextReports, ShowTheLineWithACaretAndWhatIsRelated) {
  const std::string path = directory.Write("tree/a/index.json", "{\n\t\"N\": 4294967296\n}\n");
  Finding& finding =
      Add(RuleId::kStoreIntegerClamped, path, {2, 7}, "the integer is too large", "/N");
  finding.related.push_back({{path, "", Spot::kValue, {1, 1}}, "the object"});
  finding.related.push_back({{directory.path("tree/b"), {}}, "the other"});
  EXPECT_EQ(Text(),
            "tree/a/index.json:2:7: warning: the integer is too large [store-integer-clamped]\n"
            "    2 |  \"N\": 4294967296\n"
            "      |       ^~~~~~~~~~\n"
            "  tree/a/index.json:1:1: the object\n"
            "  tree/b: the other\n");
}

TEST_F(TextReports, LeaveOutWhatIsNotKnown) {
  Add(RuleId::kUpdateSlow, "", {}, "slow");
  Add(RuleId::kLoadUnreadable, directory.path("tree/a"), {}, "unreadable");
  Add(RuleId::kLoadSyntax, directory.path("tree/gone"), {1, 1}, "wrong");
  EXPECT_EQ(Text(),
            "tree: note: slow [update-slow]\n"
            "tree/a: error: unreadable [load-unreadable]\n"
            "tree/gone:1:1: error: wrong [load-syntax]\n");
}

TEST_F(TextReports, FitInto80ColumnsBesideLargeLineNumbers) {
  const std::string line = "[\"" + std::string(200, 'x') + "\"]";
  const std::string path =
      directory.Write("tree/index.json", std::string(1234566, '\n') + line + "\n");
  Add(RuleId::kLinkRepeated, path, {1234567, 2}, "long");
  EXPECT_EQ(Text(),
            "tree/index.json:1234567:2: note: long [link-repeated]\n"
            "1234567 | [\"" +
                std::string(67, 'x') +
                "…\n"
                "        |  ^" +
                std::string(67, '~') + "\n");
}

TEST_F(TextReports, KeepEachFindingOnOneLine) {
  Finding& finding =
      Add(RuleId::kKeyGlob, directory.path("tree/a\nb\xFF"), {}, "the key \"\n\x1B[2J\" is odd");
  finding.related.push_back({{"\t", {}}, "a\rb"});
  EXPECT_EQ(Text(),
            "tree/a\\x0ab\\xff: warning: the key \"\\x0a\\x1b[2J\" is odd [key-glob]\n"
            "  \\x09: a\\x0db\n");
}

TEST_F(TextReports, HaveColorsAsCompilersDo) {
  const std::string path = directory.Write("tree/x", "  true");
  Add(RuleId::kLoadSyntax, path, {1, 3}, "E").related.push_back({{path, {}}, "R"});
  Add(RuleId::kKeyGlob, "w", {}, "W");
  Add(RuleId::kKeyBlank, "n", {}, "N");
  EXPECT_EQ(Text(true),
            "\033[1mtree/x:1:3:\033[0m \033[1;31merror:\033[0m E [load-syntax]\n"
            "    1 |   true\n"
            "      |   \033[1;32m^~~~\033[0m\n"
            "  \033[1mtree/x:\033[0m R\n"
            "\033[1mw:\033[0m \033[1;35mwarning:\033[0m W [key-glob]\n"
            "\033[1mn:\033[0m \033[1;36mnote:\033[0m N [key-blank]\n");
}

TEST_F(TextReports, EndWithTheSummary) {
  report.files = 2;
  EXPECT_EQ(TextReport(options, report, false), SummaryLine(report) + "\n");
}

TEST_F(TextReports, TellWhatAFailingLoadWouldPrintLast) {
  report.create = {255, "a\nb\n"};
  report.update = {255, "c\n"};
  EXPECT_EQ(Text(), "create prints:\n  a\n  b\n");
  report.create = {255, "1\n2\n3\n4\x1B\n"};
  EXPECT_EQ(Text(), "create prints in the end:\n  2\n  3\n  4\\x1b\n");
  report.create = {0, "a\n"};
  EXPECT_EQ(Text(), "update prints:\n  c\n");
  report.update = {0, "c\n"};
  EXPECT_EQ(Text(), "");
  report.create = {255, ""};
  EXPECT_EQ(Text(), "");
}

TEST_F(TextReports, TellWhichEntriesOfTheBaselineAcceptNothing) {
  options.baseline = "known\n";
  report.unused_entries = {{"key-glob", "a", "/B", 7}};
  EXPECT_EQ(Text(), "known\\x0a:7: note: nothing is accepted by this entry: key-glob\ta\t/B\n");
}

TEST_F(TextReports, HaveFindingsAndEntriesOnlyWhenQuiet) {
  options.quiet = true;
  EXPECT_EQ(Text(), "");
  report.create = {255, "a\n"};
  report.unused_entries = {{"key-glob", "a", "", 7}};
  const std::string path = directory.Write("tree/x", "  true");
  Add(RuleId::kLoadSyntax, path, {1, 3}, "E").related.push_back({{path, {}}, "R"});
  EXPECT_EQ(Text(),
            "tree/x:1:3: error: E [load-syntax]\n"
            "  tree/x: R\n"
            "baseline:7: note: nothing is accepted by this entry: key-glob\ta\n");
}

}  // namespace

}  // namespace ostrafel
