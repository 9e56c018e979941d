// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DIFF_USAGE_H_
#define OSTRAFEL_DIFF_USAGE_H_

#include <string>

namespace ostrafel {

/// What --help prints.
[[nodiscard]] std::string DiffHelpText();

/// What --version prints.
[[nodiscard]] std::string DiffVersionText();

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_USAGE_H_
