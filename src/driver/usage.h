// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DRIVER_USAGE_H_
#define OSTRAFEL_DRIVER_USAGE_H_

namespace ostrafel {

/// Prints the usage text on standard error.
void PrintUsage();

}  // namespace ostrafel

#endif  // OSTRAFEL_DRIVER_USAGE_H_
