// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The command line of ostrafel-check.
#ifndef OSTRAFEL_CHECK_OPTIONS_H_
#define OSTRAFEL_CHECK_OPTIONS_H_

#include <optional>
#include <string>
#include <vector>

#include "check/rule.h"
#include "tool/color.h"
#include "tool/tree_arguments.h"

namespace ostrafel {

enum class Format { kText, kJson, kSarif, kGithub };

struct CheckOptions : TreeArguments {
  Format format = Format::kText;
  Color color = Color::kAuto;
  std::vector<bool> is_on;  ///< For each rule, by its RuleId: is it looked for?
  Level fail_on = Level::kError;
  std::optional<std::string> baseline;        ///< The file to read.
  std::optional<std::string> write_baseline;  ///< The file to write.
  bool print_store = false;
  bool quiet = false;
};

/// What the command line asks for.
struct CommandLine {
  std::optional<CheckOptions> options;  ///< Nothing when all is done or the line is wrong.
  int status = 0;                       ///< What to end with where there are no options.
};

/// Takes argc and argv as main does. Carries out by itself what needs no tree (--help, --version,
/// --explain, --list-rules), on standard output; says on standard error what is wrong with the
/// line.
[[nodiscard]] CommandLine ParseCommandLine(int argc, char** argv);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_OPTIONS_H_
