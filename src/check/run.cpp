// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/run.h"

#include <jansson.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "base/message.h"
#include "check/check.h"
#include "check/options.h"
#include "check/output.h"
#include "check/progress.h"
#include "check/report.h"
#include "check/survey.h"
#include "document/json_file.h"
#include "loading/static_data_walk.h"

namespace ostrafel {

namespace {

constexpr int kNothingFound = 0;
constexpr int kSomethingFound = 1;
constexpr int kTrouble = 2;

void PrintOutOfMemory() { PrintMessage("ostrafel-check: out of memory\n"); }

// For jansson, which would tell that memory is short as an error in the file, and through which no
// exception passes.
void* AllocateOrEnd(std::size_t size) {
  void* memory = std::malloc(size);
  if (memory == nullptr) {
    Messages.collector = nullptr;  // of a play, whose messages nobody will see
    PrintOutOfMemory();
    std::_Exit(kTrouble);
  }
  return memory;
}

LoadRequest RequestOf(const CheckOptions& options) {
  return {LoadAction::kCreate, options.static_data_path, options.uri, options.file_name};
}

// Says why there is nothing at the path that the loader could take.
int RefusePath(const std::string& path) {
  struct stat status = {};
  const bool exists = stat(path.c_str(), &status) == 0;
  PrintMessage(
      "ostrafel-check: %s: %s\n", path.c_str(),
      exists ? "is neither a folder nor a file whose name ends in .json" : std::strerror(errno));
  return kTrouble;
}

bool HasColors(const CheckOptions& options) {
  if (options.color != Color::kAuto) return options.color == Color::kAlways;
  const auto value_of = [](const char* name) {
    const char* value = std::getenv(name);
    return std::string(value == nullptr ? "" : value);
  };
  return isatty(STDOUT_FILENO) != 0 && value_of("NO_COLOR").empty() && value_of("TERM") != "dumb";
}

std::string TextOf(const CheckOptions& options, const Report& report) {
  switch (options.format) {
    case Format::kText:
      return TextReport(options, report, HasColors(options));
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
  const LoadRequest request = RequestOf(options);
  const Listing listing = ListTree(request);
  if (listing.end == LoadEnd::kNoSuchPath) return RefusePath(options.static_data_path);
  const Played create = PlayLoad(&server, request, listing, OnFailure::kStop);
  const char* message = create.messages.c_str();
  PrintMessage("%s", message);
  if (!WriteOutput(StoreJson(server))) return kTrouble;
  return create.status == 0 ? kNothingFound : kSomethingFound;
}

Survey SurveyWith(const CheckOptions& options, ProgressLine* progress) {
  return SurveyTree(RequestOf(options), [&](std::size_t done, std::size_t all) {
    progress->Show("surveyed", done, all);
  });
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
  json_set_alloc_funcs(AllocateOrEnd, std::free);
  if (!options.www.empty()) {
    if (!IsDirectory(options.www)) {
      PrintMessage("ostrafel-check: %s: is no folder\n", options.www.c_str());
      return kTrouble;
    }
    Documents.include_root = options.www;
  }
  return options.print_store ? PrintStore(options) : CheckWith(options);
}

}  // namespace

int RunCheck(int argc, char** argv) {
  ReserveStandardDescriptors();
  try {
    return Run(argc, argv);
  } catch (const std::bad_alloc&) {
    PrintOutOfMemory();
  } catch (const std::exception& error) {
    PrintMessage("ostrafel-check: %s\n", error.what());
  }
  return kTrouble;
}

}  // namespace ostrafel
