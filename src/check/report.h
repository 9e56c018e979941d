// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What a check tells, in all formats.
#ifndef OSTRAFEL_CHECK_REPORT_H_
#define OSTRAFEL_CHECK_REPORT_H_

#include <cstddef>
#include <string>
#include <vector>

#include "check/baseline.h"
#include "check/finding.h"
#include "check/options.h"
#include "check/survey.h"

namespace ostrafel {

struct Report {
  std::size_t files = 0;    ///< That the load takes.
  std::size_t keys = 0;     ///< That a create leaves in an empty store, with their records.
  std::size_t records = 0;  ///< Fields of hashes and elements of lists.
  Played create;
  Played update;
  Findings findings;  ///< Sorted by path, line, column, rule; with positions.
  std::vector<BaselineEntry> unused_entries;  ///< Those of the baseline that accept nothing.
};

/// How many findings have that level.
[[nodiscard]] std::size_t CountOf(const Report& report, Level level);

/// "271 files, 430 keys, 7,321 records: 5 errors, 12 warnings, 3 notes; create ends with status 0,
/// update with 0", without a line end.
[[nodiscard]] std::string SummaryLine(const Report& report);

// Each of these returns the whole output of its format, ended by a line end.

/// Each finding as "path:line:column: level: sentence [rule]" on one line, the line of the file
/// with a caret, the related places; then the entries of the baseline that accept nothing, what a
/// load that fails would print in the end, and the summary. In 80 columns but for what is on one
/// line so that programs can read it. Reads the files again. With options.quiet only findings and
/// entries.
[[nodiscard]] std::string TextReport(const CheckOptions& options, const Report& report,
                                     bool has_colors);

/// One JSON object, as docs/ostrafel-check.schema.json describes it.
[[nodiscard]] std::string JsonReport(const CheckOptions& options, const Report& report);

/// A log of SARIF 2.1.0, for code scanning services and editors.
[[nodiscard]] std::string SarifReport(const CheckOptions& options, const Report& report);

/// Workflow commands of GitHub's runners, which show the findings beside the changed lines; then
/// the summary.
[[nodiscard]] std::string GithubReport(const CheckOptions& options, const Report& report);

/// The contents of a store as a JSON object: {"KEY": {"hash": {"FIELD": "VALUE", ...}}, "KEY":
/// {"list": ["VALUE", ...]}}, a key a line, keys and fields in the order of their bytes. A byte
/// that is no UTF-8 is the lone surrogate "\udcNN". Keys of other types, which no load makes, are
/// left out.
[[nodiscard]] std::string StoreJson(const Server& server);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_REPORT_H_
