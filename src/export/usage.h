// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_EXPORT_USAGE_H_
#define OSTRAFEL_EXPORT_USAGE_H_

#include <string>

namespace ostrafel {

/// What --help prints.
[[nodiscard]] std::string ExportHelpText();

/// "ostrafel-export 1.0.0\n", with the version of the build.
[[nodiscard]] std::string ExportVersionText();

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_USAGE_H_
