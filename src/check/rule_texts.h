// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The table of rules as people read it.
#ifndef OSTRAFEL_CHECK_RULE_TEXTS_H_
#define OSTRAFEL_CHECK_RULE_TEXTS_H_

#include <string>

#include "check/rule.h"

namespace ostrafel {

/// One line for each rule: its name, level and summary, in columns.
[[nodiscard]] std::string RuleList();

/// Name, level, summary and explanation of a rule, in lines of 80 columns. A line of the
/// explanation that begins with a blank is left as it is.
[[nodiscard]] std::string RuleExplanation(const Rule& rule);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_RULE_TEXTS_H_
