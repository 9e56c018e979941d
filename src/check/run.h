// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_CHECK_RUN_H_
#define OSTRAFEL_CHECK_RUN_H_

namespace ostrafel {

/// One run of ostrafel-check, from the command line to the exit status: 0 when nothing at or above
/// the level to fail on was found, 1 when something was, 2 when the check could not be made. Takes
/// what main takes. Findings go to standard output, trouble to standard error.
int RunCheck(int argc, char** argv);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_RUN_H_
