// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/report.h"

namespace ostrafel {

std::string TextReport(const CheckOptions& /*options*/, const Report& report, bool /*has_colors*/) {
  std::string text;
  for (const Finding& finding : report.findings) {
    const Rule& rule = RuleOf(finding.rule);
    text += finding.place.path + ":" + std::to_string(finding.place.position.line) + ":" +
            std::to_string(finding.place.position.column) + ": " + NameOf(rule.level) + ": " +
            finding.message + " [" + rule.name + "]\n";
  }
  return text;
}

}  // namespace ostrafel
