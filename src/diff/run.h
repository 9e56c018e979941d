// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The program ostrafel-diff.
#ifndef OSTRAFEL_DIFF_RUN_H_
#define OSTRAFEL_DIFF_RUN_H_

namespace ostrafel {

/// Runs ostrafel-diff; argc and argv as main gets them. Returns the exit status: 0 when the store
/// is as the tree would have it, 1 when it differs, 2 when there was trouble.
[[nodiscard]] int RunDiff(int argc, char** argv);

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_RUN_H_
