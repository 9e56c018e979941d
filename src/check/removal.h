// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_CHECK_REMOVAL_H_
#define OSTRAFEL_CHECK_REMOVAL_H_

#include <algorithm>
#include <array>
#include <string>

#include "layout/layout.h"
#include "memory/glob.h"

namespace ostrafel {

/// What a create of a URI, which is not empty, removes.
class Removal {
 public:
  explicit Removal(const std::string& uri) : patterns_(TreePatterns(uri)) {}

  /// True when the create removes the key.
  [[nodiscard]] bool Takes(const std::string& key) const {
    return std::any_of(patterns_.begin(), patterns_.end(),
                       [&](const std::string& pattern) { return MatchesGlob(pattern, key); });
  }

 private:
  std::array<std::string, 3> patterns_;
};

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_REMOVAL_H_
