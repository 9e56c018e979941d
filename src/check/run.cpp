// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/run.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/message.h"
#include "check/check.h"
#include "check/options.h"
#include "check/report.h"
#include "check/survey.h"
#include "document/json_file.h"
#include "tool/color.h"
#include "tool/output.h"
#include "tool/progress.h"
#include "tool/tool.h"
#include "tool/tree_arguments.h"

namespace ostrafel {

namespace {

constexpr int kNothingFound = 0;
constexpr int kSomethingFound = 1;

std::string TextOf(const CheckOptions& options, const Report& report) {
  switch (options.format) {
    case Format::kText:
      return TextReport(options, report, HasColors(options.color));
    case Format::kJson:
      return JsonReport(options, report);
    case Format::kSarif:
      return SarifReport(options, report);
    case Format::kGithub:
      return GithubReport(options, report);
  }
  return {};
}

int PrintStore(const CheckOptions& options) {
  Server server;
  const LoadRequest request = RequestOf(options, LoadAction::kCreate);
  const Listing listing = ListTree(request);
  if (listing.end == LoadEnd::kNoSuchPath) return RefusePath(options.static_data_path);
  const Played create = PlayLoad(&server, request, listing, OnFailure::kStop);
  const char* message = create.messages.c_str();
  PrintMessage("%s", message);
  if (!WriteOutput(StoreJson(server))) return kTrouble;
  return create.status == 0 ? kNothingFound : kSomethingFound;
}

Survey SurveyWith(const CheckOptions& options, ProgressLine* progress) {
  return SurveyTree(
      RequestOf(options, LoadAction::kCreate),
      [&](std::size_t done, std::size_t all) { progress->Show("surveyed", done, all); });
}

// The findings of the rules that are on, with positions.
Findings FindingsIn(const Survey& survey, const CheckOptions& options, ProgressLine* progress) {
  Findings findings = CheckTree(
      survey, [&](std::size_t done, std::size_t all) { progress->Show("checked", done, all); });
  const auto is_off = [&](const Finding& finding) {
    return !options.is_on[static_cast<std::size_t>(finding.rule)];
  };
  findings.erase(std::remove_if(findings.begin(), findings.end(), is_off), findings.end());
  LocateFindings(&findings);
  return findings;
}

int PrintReport(const CheckOptions& options, const Report& report) {
  if (!WriteOutput(TextOf(options, report))) return kTrouble;
  const auto counts = [&](const Finding& finding) {
    return RuleOf(finding.rule).level <= options.fail_on;
  };
  const Findings& findings = report.findings;
  return std::any_of(findings.begin(), findings.end(), counts) ? kSomethingFound : kNothingFound;
}

int CheckWith(const CheckOptions& options) {
  std::optional<std::vector<BaselineEntry>> baseline;
  if (options.baseline && !options.write_baseline) {
    baseline = ReadBaseline(*options.baseline);
    if (!baseline) return kTrouble;
  }
  KeptFiles kept_files;
  Documents.kept_files = &kept_files;
  ProgressLine progress(!options.quiet && isatty(STDERR_FILENO) != 0);
  const Survey survey = SurveyWith(options, &progress);
  if (survey.listing.end == LoadEnd::kNoSuchPath) return RefusePath(options.static_data_path);
  Report report;
  report.files = survey.files.size();
  report.keys = survey.keys;
  report.records = survey.records;
  report.create = survey.create;
  report.update = survey.update;
  report.findings = FindingsIn(survey, options, &progress);
  progress.Erase();
  if (options.write_baseline) {
    const bool is_written = WriteBaseline(options, *options.write_baseline, report.findings);
    return is_written ? kNothingFound : kTrouble;
  }
  if (baseline) report.unused_entries = ApplyBaseline(options, *baseline, &report.findings);
  return PrintReport(options, report);
}

int Run(int argc, char** argv) {
  const CommandLine line = ParseCommandLine(argc, argv);
  if (!line.options) return line.status;
  const CheckOptions& options = *line.options;
  if (!SetIncludeRoot(options)) return kTrouble;
  return options.print_store ? PrintStore(options) : CheckWith(options);
}

}  // namespace

int RunCheck(int argc, char** argv) { return RunTool(argc, argv, Run); }

}  // namespace ostrafel
