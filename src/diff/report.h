// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What a comparison tells, in all formats.
#ifndef OSTRAFEL_DIFF_REPORT_H_
#define OSTRAFEL_DIFF_REPORT_H_

#include <cstddef>
#include <optional>
#include <string>

#include "diff/apply.h"
#include "diff/difference.h"
#include "diff/options.h"
#include "memory/memory_server.h"

namespace ostrafel {

struct DiffReport {
  const Server& stored;
  const Server& wanted;
  const Differences& differences;
  std::size_t files = 0;           ///< Of the tree.
  std::optional<Applied> applied;  ///< When the differences were taken out of the store.
};

// Each of these returns the whole output of its format, ended by a line end.

/// Each key that differs, by resource: for each of its members and elements the file, line and
/// pointer that it comes from, what the store has ("-") and what is wanted ("+"); then a last line
/// with numbers. Of differences that were applied only that line.
[[nodiscard]] std::string DiffText(const DiffOptions& options, const DiffReport& report);

/// For each resource that differs the numbers of its keys and records; then the last line of
/// DiffText. Of differences that were applied only that line.
[[nodiscard]] std::string DiffStat(const DiffReport& report);

/// One JSON object, as docs/ostrafel-diff.schema.json describes it.
[[nodiscard]] std::string DiffJson(const DiffOptions& options, const DiffReport& report);

/// "equal: 88 files, 428 keys, 1,764 records", or how many keys and records differ, or how many
/// were changed; without a line end.
[[nodiscard]] std::string DiffSummary(const DiffReport& report);

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_REPORT_H_
