// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/report.h"

#include <algorithm>

#include "check/grouped.h"

namespace ostrafel {

namespace {

// The length of StaticDataPath without the slashes at its end.
std::size_t TopLength(const CheckOptions& options) {
  return options.static_data_path.find_last_not_of('/') + 1;
}

// Where in path begins what is below StaticDataPath; 0 when path is not below it.
std::size_t RestStart(const CheckOptions& options, const std::string& path) {
  const std::size_t length = TopLength(options);
  if (path.compare(0, length, options.static_data_path, 0, length) != 0) return 0;
  if (length >= path.size() || path[length] != '/') return 0;
  const std::size_t start = path.find_first_not_of('/', length);
  return start == std::string::npos ? 0 : start;
}

// "1 file", "7,321 files".
std::string Counted(std::size_t count, const std::string& noun) {
  return Grouped(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace

std::size_t CountOf(const Report& report, Level level) {
  return static_cast<std::size_t>(
      std::count_if(report.findings.begin(), report.findings.end(),
                    [&](const Finding& finding) { return RuleOf(finding.rule).level == level; }));
}

std::string RelativePath(const CheckOptions& options, const std::string& path) {
  return path.substr(RestStart(options, path));
}

std::string ShownPath(const CheckOptions& options, const std::string& path) {
  if (path.empty()) return options.static_data_path;
  const std::size_t start = RestStart(options, path);
  if (start == 0) return path;
  return path.substr(0, TopLength(options)) + "/" + path.substr(start);
}

std::string SummaryLine(const Report& report) {
  const auto counted = [&](Level level) { return Counted(CountOf(report, level), NameOf(level)); };
  return Counted(report.files, "file") + ", " + Counted(report.keys, "key") + ", " +
         Counted(report.records, "record") + ": " + counted(Level::kError) + ", " +
         counted(Level::kWarning) + ", " + counted(Level::kNote) + "; create ends with status " +
         std::to_string(report.create.status) + ", update with " +
         std::to_string(report.update.status);
}

}  // namespace ostrafel
