// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/report.h"

#include <algorithm>

#include "tool/grouped.h"

namespace ostrafel {

std::size_t CountOf(const Report& report, Level level) {
  return static_cast<std::size_t>(
      std::count_if(report.findings.begin(), report.findings.end(),
                    [&](const Finding& finding) { return RuleOf(finding.rule).level == level; }));
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
