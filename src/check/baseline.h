// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Findings that are known and accepted.
#ifndef OSTRAFEL_CHECK_BASELINE_H_
#define OSTRAFEL_CHECK_BASELINE_H_

#include <optional>
#include <string>
#include <vector>

#include "check/finding.h"
#include "check/options.h"

namespace ostrafel {

/// Without line numbers, which change with every edit.
struct BaselineEntry {
  std::string rule;
  std::string path;     ///< Relative to the StaticDataPath.
  std::string pointer;  ///< Empty where a finding has none.
};

/// Reads a baseline. Nothing, after a message on standard error, when it cannot be read.
[[nodiscard]] std::optional<std::vector<BaselineEntry>> ReadBaseline(const std::string& path);

/// Takes those findings away that an entry accepts, and returns the entries that accepted none.
[[nodiscard]] std::vector<BaselineEntry> ApplyBaseline(const CheckOptions& options,
                                                       const std::vector<BaselineEntry>& baseline,
                                                       Findings* findings);

/// Writes a baseline that accepts these findings. False, after a message, when that fails.
[[nodiscard]] bool WriteBaseline(const CheckOptions& options, const std::string& path,
                                 const Findings& findings);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_BASELINE_H_
