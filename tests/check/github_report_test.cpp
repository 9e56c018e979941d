// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/report_fixture.h"

namespace ostrafel {

namespace {

class GithubReports : public ReportTest {
 protected:
  GithubReports() {
    options.static_data_path = "tree/";
    options.quiet = true;
  }
};

TEST_F(GithubReports, AreWorkflowCommands) {
  Add(RuleId::kUpdateSlow, "", {}, "slow");
  Add(RuleId::kKeyGlob, "tree//a", {}, "odd");
  Add(RuleId::kLoadSyntax, "tree//a/index.json", {3, 14}, "wrong", "/A");
  EXPECT_EQ(GithubReport(options, report),
            "::notice title=update-slow::slow\n"
            "::warning file=tree/a,title=key-glob::odd\n"
            "::error file=tree/a/index.json,line=3,col=14,title=load-syntax::wrong\n");
}

TEST_F(GithubReports, EscapeWhatEndsACommandOrAProperty) {
  Add(RuleId::kKeyGlob, "tree/a:b,c%d\r\n\xFF", {1, 2}, "x%0A, y: z\r\n\x1B::error::\xFF");
  EXPECT_EQ(GithubReport(options, report),
            "::warning file=tree/a%3Ab%2Cc%25d%0D%0A\\xff,line=1,col=2,title=key-glob::"
            "x%250A, y: z\\x0d\\x0a\\x1b::error::\\xff\n");
}

TEST_F(GithubReports, HaveWhatIsRelatedInTheMessage) {
  Finding& finding = Add(RuleId::kKeyGlob, "tree/a", {1, 2}, "odd");
  finding.related.push_back({{"tree/b%", {}, Spot::kValue, {3, 4}}, "one"});
  finding.related.push_back({{"/www/x\n", {}}, "two"});
  EXPECT_EQ(GithubReport(options, report),
            "::warning file=tree/a,line=1,col=2,title=key-glob::odd%0Atree/b%25:3:4: one%0A"
            "/www/x\\x0a: two\n");
}

TEST_F(GithubReports, EndWithUnusedEntriesAndTheSummary) {
  options.quiet = false;
  report.unused_entries = {{"key-glob", "a%", "/B", 7}};
  EXPECT_EQ(GithubReport(options, report),
            "::notice title=baseline::nothing is accepted by this entry: key-glob\ta%25\t/B\n" +
                SummaryLine(report) + "\n");
}

}  // namespace

}  // namespace ostrafel
