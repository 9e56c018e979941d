// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The command line of ostrafel-export.
#ifndef OSTRAFEL_EXPORT_OPTIONS_H_
#define OSTRAFEL_EXPORT_OPTIONS_H_

#include <optional>
#include <string>

#include "live/server_choice.h"
#include "tool/tree_arguments.h"

namespace ostrafel {

/// Of the tree arguments, static_data_path is the folder that is written to.
struct ExportOptions : TreeArguments {
  ServerChoice server;
  bool is_forced = false;      ///< Writes into a folder that is not empty.
  bool prints = false;         ///< Prints one resource instead.
  bool windows_names = false;  ///< See Folders.
  bool quiet = false;
};

/// What the command line asks for.
struct ExportCommandLine {
  std::optional<ExportOptions> options;  ///< Nothing when all is done or the line is wrong.
  int status = 0;                        ///< What to end with where there are no options.
};

/// Takes argc and argv as main does, and OSTRAFEL_PASSWORD of the environment. Carries out by
/// itself what needs no store (--help, --version), on standard output; says on standard error what
/// is wrong with the line. Raises runtime_error when the password's file cannot be read.
[[nodiscard]] ExportCommandLine ParseExportCommandLine(int argc, char** argv);

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_OPTIONS_H_
