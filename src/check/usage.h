// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_CHECK_USAGE_H_
#define OSTRAFEL_CHECK_USAGE_H_

#include <string>

namespace ostrafel {

/// What --help prints.
[[nodiscard]] std::string HelpText();

/// What --version prints.
[[nodiscard]] std::string VersionText();

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_USAGE_H_
