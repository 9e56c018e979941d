// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// SIGINT, SIGTERM and SIGHUP while there is something to take away: they end what is done by an
// exception, and the program once that has taken everything away.
#ifndef OSTRAFEL_EXPORT_INTERRUPTION_H_
#define OSTRAFEL_EXPORT_INTERRUPTION_H_

namespace ostrafel {

/// Lets these signals end the reading from the server whose connection has this descriptor, of
/// which whoever waits is told that it is closed. A signal that is ignored stays so.
void CatchInterruptions(int connection);

/// True when such a signal has come.
[[nodiscard]] bool IsInterrupted();

/// Raises runtime_error when such a signal has come.
void CheckInterruption();

/// Ends the process by the signal that has come, if one has.
void EndByInterruption();

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_INTERRUPTION_H_
