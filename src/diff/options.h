// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The command line of ostrafel-diff.
#ifndef OSTRAFEL_DIFF_OPTIONS_H_
#define OSTRAFEL_DIFF_OPTIONS_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "live/server_choice.h"
#include "tool/color.h"
#include "tool/tree_arguments.h"

namespace ostrafel {

enum class DiffFormat { kText, kJson };

struct DiffOptions : TreeArguments {
  bool is_update = false;              ///< What an update would make, not a create.
  std::optional<std::string> against;  ///< A tree that stands for the store.
  ServerChoice server;
  DiffFormat format = DiffFormat::kText;
  bool is_stat = false;
  std::vector<std::string> ignored;  ///< Globs of keys and pointers.
  bool has_extra = true;             ///< What only the store has counts.
  Color color = Color::kAuto;
  bool quiet = false;
  bool apply = false;
  std::optional<std::size_t> batch;  ///< So many resources in a transaction; all when not given.
};

/// What the command line asks for.
struct DiffCommandLine {
  std::optional<DiffOptions> options;  ///< Nothing when all is done or the line is wrong.
  int status = 0;                      ///< What to end with where there are no options.
};

/// Takes argc and argv as main does, and OSTRAFEL_PASSWORD of the environment. Carries out by
/// itself what needs no tree (--help, --version), on standard output; says on standard error what
/// is wrong with the line. Raises runtime_error when the password's file cannot be read.
[[nodiscard]] DiffCommandLine ParseDiffCommandLine(int argc, char** argv);

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_OPTIONS_H_
