// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_CONNECTION_BROKEN_PIPE_H_
#define OSTRAFEL_CONNECTION_BROKEN_PIPE_H_

namespace ostrafel {

/// Lets a write to a peer that is gone fail with EPIPE instead of ending the process by SIGPIPE, so
/// that a run still prints its messages and ends with its status (hiredis sends with write(2)).
///
/// Installs a handler that does nothing. Ignoring the signal would be inherited by the shell that
/// popen starts (POSIX execve keeps ignored signals ignored); a handler is reset there.
void SurviveBrokenPipe();

}  // namespace ostrafel

#endif  // OSTRAFEL_CONNECTION_BROKEN_PIPE_H_
