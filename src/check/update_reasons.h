// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Why an update of the unchanged tree loses what it loses.
#ifndef OSTRAFEL_CHECK_UPDATE_REASONS_H_
#define OSTRAFEL_CHECK_UPDATE_REASONS_H_

#include <string>
#include <vector>

#include "check/finding.h"
#include "check/survey.h"
#include "check/update_losses.h"

namespace ostrafel {

struct Reason {
  std::string text;                   ///< Goes on after "an update loses it, ".
  std::vector<Related> related = {};  ///< Empty when no reason could be told.
  std::string key = {};               ///< Of what is to blame; empty when none could be told.
};

/// The reason of each of these values, which are FindLosses' of the survey. It is told from what is
/// written after the lost value and begins like its key: the play itself gives no reasons.
[[nodiscard]] std::vector<Reason> ReasonsOf(const Survey& survey, const std::vector<Loss>& losses);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_UPDATE_REASONS_H_
