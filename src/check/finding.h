// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What a check finds.
#ifndef OSTRAFEL_CHECK_FINDING_H_
#define OSTRAFEL_CHECK_FINDING_H_

#include <optional>
#include <string>
#include <vector>

#include "check/rule.h"
#include "text/json_positions.h"

namespace ostrafel {

/// What of a member a place points to.
enum class Spot { kValue, kName };

struct Place {
  std::string path;  ///< As the loader opens it; empty when it is no file's affair.
  std::optional<std::string> pointer = {};  ///< A JSON pointer; nothing where the text has none.
  Spot spot = Spot::kValue;
  Position position = {};  ///< {0, 0} until it is known: rules know it of refused texts only.
};

struct Related {
  Place place;
  std::string message;  ///< What this place has to do with it: no sentence, "the first claim".
};

struct Finding {
  RuleId rule;
  Place place;
  std::optional<std::string> key;  ///< Of the store; nothing where none is concerned.
  std::string message;  ///< One sentence without a full stop, for who does not know the store.
  std::vector<Related> related = {};
};

using Findings = std::vector<Finding>;

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_FINDING_H_
