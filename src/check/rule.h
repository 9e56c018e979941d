// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The rules that a tree is checked by.
#ifndef OSTRAFEL_CHECK_RULE_H_
#define OSTRAFEL_CHECK_RULE_H_

#include <string_view>
#include <vector>

namespace ostrafel {

/// How bad a finding is, the worst first.
enum class Level { kError, kWarning, kNote };

/// "error", "warning" or "note".
[[nodiscard]] const char* NameOf(Level level);

enum class RuleId {
  kLoadUnreadable,
  kLoadSyntax,
  kLoadNotObject,
  kLoadIdType,
  kLoadInclude,
  kLoadKeyType,
  kLoadLostMember,
  kLoadNothing,
  kStoreIntegerClamped,
  kStoreRealRounded,
  kStoreDuplicateMember,
  kStoreReservedType,
  kKeyClaimedTwice,
  kKeyNotPath,
  kKeyTrailingSlash,
  kKeyOutsideUri,
  kKeyGlob,
  kKeyCase,
  kKeyBlank,
  kLinkDangling,
  kLinkFragment,
  kLinkUri,
  kLinkRepeated,
  kUpdateLoses,
  kUpdateSlow,
  kRedfishCount,
  kRedfishNotMember,
  kRedfishOrphan,
  kRedfishMemberId,
  kRedfishActionTarget,
  kRedfishErrorBody,
  kRedfishRequired,
};

struct Rule {
  RuleId id;
  const char* name;  ///< As options, formats and the manual have it.
  Level level;
  bool is_on;               ///< Without --select.
  const char* summary;      ///< One line, without a full stop.
  const char* explanation;  ///< For who met a finding: the cause, what it does, how to mend it.
};

/// All rules, in the order of RuleId: --list-rules, --explain, the manual and SARIF have theirs
/// from here.
[[nodiscard]] const std::vector<Rule>& Rules();

[[nodiscard]] const Rule& RuleOf(RuleId id);

/// The rule of that name; null when there is none.
[[nodiscard]] const Rule* FindRule(std::string_view name);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_RULE_H_
