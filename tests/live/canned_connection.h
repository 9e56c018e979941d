// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A connection whose other end has answered before it is asked.
#ifndef OSTRAFEL_TESTS_LIVE_CANNED_CONNECTION_H_
#define OSTRAFEL_TESTS_LIVE_CANNED_CONNECTION_H_

#include <string>
#include <vector>

#include "connection/store_connection.h"
#include "model/reply.h"

namespace ostrafel {

/// Gives these bytes, which must have room in a socket, and then the end of the stream.
class CannedConnection {
 public:
  explicit CannedConnection(const std::string& answers);
  ~CannedConnection();
  CannedConnection(const CannedConnection&) = delete;
  CannedConnection& operator=(const CannedConnection&) = delete;

  redisContext* context() { return context_.get(); }

  /// Closes the other end: what is sent from here on meets nobody.
  void Leave();

  /// The commands that were sent so far.
  std::vector<model::Command> Commands();

 private:
  int peer_ = -1;
  StoreConnection context_;
};

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_LIVE_CANNED_CONNECTION_H_
