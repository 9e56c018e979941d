// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/report.h"

#include <algorithm>

namespace ostrafel {

std::size_t CountOf(const Report& report, Level level) {
  return static_cast<std::size_t>(
      std::count_if(report.findings.begin(), report.findings.end(),
                    [&](const Finding& finding) { return RuleOf(finding.rule).level == level; }));
}

std::string RelativePath(const CheckOptions& options, const std::string& path) {
  const std::string start = options.static_data_path + "/";
  return path.compare(0, start.size(), start) == 0 ? path.substr(start.size()) : path;
}

}  // namespace ostrafel
