// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DRIVER_RUN_H_
#define OSTRAFEL_DRIVER_RUN_H_

namespace ostrafel {

/// One run of Ostrafel, from the command line to the exit status: checks the arguments, connects,
/// carries out the action, lists the files to load, loads and writes them one after the other,
/// sends what still waits in the batches. Takes what main takes.
///
/// Returns 0 and prints ">>> Ostrafel parsing successfully." on standard output, or returns -1 (the
/// shell sees 255) after the messages of the step that failed, all on standard error. The
/// connection is closed exactly once on every path that opened it. A failed run leaves in the store
/// what was sent before and drops what waits. Of the exceptions that the standard library raises
/// only the logic errors of writing a resource are handled here; any other ends the process.
int RunOstrafel(int argc, char** argv);

}  // namespace ostrafel

#endif  // OSTRAFEL_DRIVER_RUN_H_
