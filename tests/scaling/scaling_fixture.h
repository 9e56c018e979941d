// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_SCALING_SCALING_FIXTURE_H_
#define OSTRAFEL_TESTS_SCALING_SCALING_FIXTURE_H_

#include <string>
#include <vector>

#include "scaling/redis_node.h"
#include "system/system_fixture.h"

/// Runs of the program against servers of the test's own. The sandbox's server is the plain one
/// that they are compared with.
class ScalingTest : public SystemTest {
 protected:
  using Arguments = std::vector<std::string>;

  /// Puts the files into the include directory that the example trees name.
  ScalingTest();

  /// As Ostrafel, Load and ExpectFailure, but the runtime files lead to this server.
  Finished OstrafelOn(const RedisNode& node, const Arguments& arguments);
  void LoadOn(const RedisNode& node, const Arguments& arguments);
  void ExpectFailureOn(const RedisNode& node, const Arguments& arguments, const std::string& err);

  /// What the plain server holds when these runs are all that it has seen, as TestStore::Dump.
  std::string PlainDump(const std::vector<Arguments>& runs);

  /// True when the server gave a reply with this text in the last run.
  bool WasReplied(const std::string& text) const;

  /// Loads examples/rackmount.
  const Arguments create{"create", OSTRAFEL_SOURCE_DIR "/examples/rackmount", "/redfish/v1"};
  /// Changes some of its files.
  const Arguments update{"update", OSTRAFEL_SOURCE_DIR "/examples/rackmount-update", "/redfish/v1"};

  static constexpr const char* kHashFailure =
      "Some errors occur while creating hash data into database\n"
      "The data in database would be incorrect\n"
      ">>> Fail to write rest of data into redis\n";
};

#endif  // OSTRAFEL_TESTS_SCALING_SCALING_FIXTURE_H_
