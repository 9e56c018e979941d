// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The calls that hiredis makes for its connection.
#include <sys/socket.h>
#include <unistd.h>

#include <cstddef>

#include "faults/interposer/next.h"
#include "faults/interposer/plan.h"

extern "C" {

ssize_t read(int descriptor, void* buffer, std::size_t size) {
  static auto* const next = failing_calls::Next<ssize_t(int, void*, std::size_t)>("read");
  return failing_calls::Fails(failing_calls::kRead) ? -1 : next(descriptor, buffer, size);
}

ssize_t write(int descriptor, const void* buffer, std::size_t size) {
  static auto* const next = failing_calls::Next<ssize_t(int, const void*, std::size_t)>("write");
  return failing_calls::Fails(failing_calls::kWrite) ? -1 : next(descriptor, buffer, size);
}

int socket(int domain, int type, int protocol) noexcept {
  static auto* const next = failing_calls::Next<int(int, int, int)>("socket");
  return failing_calls::Fails(failing_calls::kSocket) ? -1 : next(domain, type, protocol);
}

int connect(int descriptor, const sockaddr* address, socklen_t size) {
  static auto* const next = failing_calls::Next<int(int, const sockaddr*, socklen_t)>("connect");
  return failing_calls::Fails(failing_calls::kConnect) ? -1 : next(descriptor, address, size);
}

}  // extern "C"
