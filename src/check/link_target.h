// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Where a link or a URI leads.
#ifndef OSTRAFEL_CHECK_LINK_TARGET_H_
#define OSTRAFEL_CHECK_LINK_TARGET_H_

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "check/finding.h"
#include "check/survey.h"
#include "document/document.h"

namespace ostrafel {

/// What is wrong with a target.
struct TargetProblem {
  bool is_fragment;  ///< There is a key, but the part after "#" leads nowhere in what it holds.
  std::string text;  ///< The rest of a sentence that begins with the link or the member.
  std::vector<Related> related;
};

enum class HasQuery { kNo, kYes };

/// Documents that links lead into, by their files: each is read once, however many lead into it.
using LinkedDocuments = std::unordered_map<std::size_t, Document>;

/// Finds a target in what a create of the tree stores. Nothing is wrong when a key is the whole
/// target, and when the part before "#" is a key (without a part before it: the subject's document)
/// and the part after it a JSON pointer, percent-encoded or not, into what is stored there. With
/// HasQuery::kYes, what a "?" begins does not count. Where a file could not be read, nothing is
/// known to be wrong. Takes other documents from linked, and adds those that it does not hold yet.
[[nodiscard]] std::optional<TargetProblem> ProblemOf(const Survey& survey, const Subject& subject,
                                                     const std::string& target, HasQuery has_query,
                                                     LinkedDocuments* linked);

/// True for what another host serves: "//host/...", "scheme:...".
[[nodiscard]] bool IsElsewhere(const std::string& target);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_LINK_TARGET_H_
