// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DRIVER_RUN_H_
#define OSTRAFEL_DRIVER_RUN_H_

namespace ostrafel {

/// One run of Ostrafel, from the command line to the exit status: checks the arguments, connects,
/// loads the tree (LoadTree). Takes what main takes.
///
/// Returns 0 and prints ">>> Ostrafel parsing successfully." on standard output, or returns -1 (the
/// shell sees 255) after the messages of the step that failed, all on standard error. The
/// connection is closed exactly once on every path that opened it. Its own messages are "Failed to
/// connect to Redis\n" and "Invalid Action parameter.\n", the latter with the usage text. Logic
/// errors of writing a resource and length errors of lists, batches and patterns become messages;
/// any other exception of the standard library ends the process.
int RunOstrafel(int argc, char** argv);

}  // namespace ostrafel

#endif  // OSTRAFEL_DRIVER_RUN_H_
