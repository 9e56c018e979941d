// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Findings that are known and accepted.
#ifndef OSTRAFEL_CHECK_BASELINE_H_
#define OSTRAFEL_CHECK_BASELINE_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "check/finding.h"
#include "check/options.h"

namespace ostrafel {

/// Accepts every finding of a rule at a place. It has no line numbers, which change with every edit
/// of a tree.
struct BaselineEntry {
  std::string rule;
  std::string path;      ///< Relative to StaticDataPath; empty for findings of no file.
  std::string pointer;   ///< Empty where a finding has none.
  std::size_t line = 0;  ///< Of the baseline; 0 when it comes from none.
};

// A baseline is a text file with an entry on each line: rule, path and JSON pointer with a tab
// between, an empty pointer left out with its tab, "-" for no path. Of a backslash there are two;
// one stands before "x" and the two hexadecimal digits of any byte. Empty lines and lines that
// begin with "#" say nothing.

/// The line of an entry, without its line end: UTF-8 without controls but its tabs.
[[nodiscard]] std::string BaselineLine(const BaselineEntry& entry);

/// Reads a baseline. Nothing, after a message on standard error, when it cannot be read or a line
/// is no entry.
[[nodiscard]] std::optional<std::vector<BaselineEntry>> ReadBaseline(const std::string& path);

/// Takes those findings away that an entry accepts, and returns the entries that accepted none, in
/// their order.
[[nodiscard]] std::vector<BaselineEntry> ApplyBaseline(const CheckOptions& options,
                                                       const std::vector<BaselineEntry>& baseline,
                                                       Findings* findings);

/// Writes a baseline that accepts these findings, sorted. False, after a message, when that fails.
[[nodiscard]] bool WriteBaseline(const CheckOptions& options, const std::string& path,
                                 const Findings& findings);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_BASELINE_H_
