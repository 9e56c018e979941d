// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/run.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string>

#include "check/check.h"
#include "check/options.h"
#include "check/report.h"
#include "check/survey.h"
#include "document/json_file.h"

namespace ostrafel {

namespace {

std::string Print(const CheckOptions& options, const Report& report) {
  switch (options.format) {
    case Format::kText:
      return TextReport(options, report, false);
    case Format::kJson:
      return JsonReport(options, report);
    case Format::kSarif:
      return SarifReport(options, report);
    case Format::kGithub:
      return GithubReport(options, report);
  }
  return {};
}

bool IsBadEnough(const CheckOptions& options, const Finding& finding) {
  return RuleOf(finding.rule).level <= options.fail_on;
}

}  // namespace

int RunCheck(int argc, char** argv) {
  const CommandLine line = ParseCommandLine(argc, argv);
  if (!line.options) return line.status;
  const CheckOptions& options = *line.options;
  WatchJsonMemory();
  KeptFiles kept_files;
  Documents.kept_files = &kept_files;
  if (!options.www.empty()) Documents.include_root = options.www;
  const Survey survey =
      SurveyTree({LoadAction::kCreate, options.static_data_path, options.uri, options.file_name});

  Report report;
  report.files = survey.files.size();
  report.keys = survey.keys;
  report.records = survey.records;
  report.create = survey.create;
  report.update = survey.update;
  report.findings = CheckTree(survey);
  auto& findings = report.findings;
  const auto is_off = [&](const Finding& finding) {
    return !options.is_on[static_cast<std::size_t>(finding.rule)];
  };
  findings.erase(std::remove_if(findings.begin(), findings.end(), is_off), findings.end());
  LocateFindings(&findings);
  (void)std::fputs(Print(options, report).c_str(), stdout);
  return std::any_of(findings.begin(), findings.end(),
                     [&](const Finding& finding) { return IsBadEnough(options, finding); })
             ? 1
             : 0;
}

}  // namespace ostrafel
