// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The rules that a list on the command line means.
#ifndef OSTRAFEL_CHECK_RULE_CHOICE_H_
#define OSTRAFEL_CHECK_RULE_CHOICE_H_

#include <optional>
#include <string>
#include <vector>

namespace ostrafel {

/// True for each rule, by its RuleId, that is looked for unless the command line says otherwise.
[[nodiscard]] std::vector<bool> DefaultRules();

/// Sets chosen, which has a place for each RuleId, to true for the rules that the list means: words
/// with commas between them, each the name of a rule, the beginning of names, "all" or "default".
/// Returns the first word that means no rule, and has then set those before it.
[[nodiscard]] std::optional<std::string> ChooseRules(const std::string& list,
                                                     std::vector<bool>* chosen);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_RULE_CHOICE_H_
