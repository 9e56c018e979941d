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
  std::vector<BaselineEntry> unused_entries;  ///< Of the baseline.
};

/// How many findings have that level.
[[nodiscard]] std::size_t CountOf(const Report& report, Level level);

/// The path less the StaticDataPath in front of it and the slash between; unchanged when it is not
/// below StaticDataPath.
[[nodiscard]] std::string RelativePath(const CheckOptions& options, const std::string& path);

// Each of these returns the whole output of its format, ended by a line end.

/// "path:line:column: level: sentence [rule]", the line with a caret, the related places; in the
/// end a line of figures. In 80 columns, with colors or without.
[[nodiscard]] std::string TextReport(const CheckOptions& options, const Report& report,
                                     bool has_colors);
[[nodiscard]] std::string JsonReport(const CheckOptions& options, const Report& report);
[[nodiscard]] std::string SarifReport(const CheckOptions& options, const Report& report);
/// Workflow commands of GitHub's runners.
[[nodiscard]] std::string GithubReport(const CheckOptions& options, const Report& report);

/// The contents of a store as a JSON object.
[[nodiscard]] std::string StoreJson(const Server& server);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_REPORT_H_
