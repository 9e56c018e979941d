// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The program ostrafel-export.
#ifndef OSTRAFEL_EXPORT_RUN_H_
#define OSTRAFEL_EXPORT_RUN_H_

namespace ostrafel {

/// Runs ostrafel-export; argc and argv as main gets them. Returns the exit status: 0 when all that
/// was exported comes back, 1 when some does not, 2 when there was trouble. Does not return when
/// one of the signals came that CatchInterruptions catches.
[[nodiscard]] int RunExport(int argc, char** argv);

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_RUN_H_
