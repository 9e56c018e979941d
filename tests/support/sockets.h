// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Stream sockets for the servers that stand in for Redis. Failures throw std::runtime_error.
#ifndef OSTRAFEL_TESTS_SUPPORT_SOCKETS_H_
#define OSTRAFEL_TESTS_SUPPORT_SOCKETS_H_

#include <string>

/// A descriptor that listens on the Unix socket at this path, which is made anew.
int ListenOnUnixSocket(const std::string& path);

/// A descriptor that listens on port 6379 of the loopback interface.
int ListenOnDefaultPort();

/// A connection to the Unix socket at this path.
int ConnectToUnixSocket(const std::string& path);

/// True when something can be read, be it the end of the stream, or comes in so many milliseconds.
bool IsReadable(int descriptor, int milliseconds);

/// Appends what can be read now. Returns false at the end of the stream or on an error.
bool ReadSome(int descriptor, std::string* bytes);

/// Sends everything. Returns false when the peer is gone.
bool WriteAll(int descriptor, const std::string& bytes);

#endif  // OSTRAFEL_TESTS_SUPPORT_SOCKETS_H_
