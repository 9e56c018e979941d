// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "scaling/scaling_fixture.h"

#include <filesystem>

#include "support/scoped_variable.h"

namespace {

// The variable by which the fixture's runs know their server.
constexpr const char* kServer = "OSTRAFEL_SANDBOX_SOCKET";

}  // namespace

ScalingTest::ScalingTest() {
  std::filesystem::copy(OSTRAFEL_SOURCE_DIR "/examples/www", kIncludeDirectory,
                        std::filesystem::copy_options::recursive);
}

Finished ScalingTest::OstrafelOn(const RedisNode& node, const Arguments& arguments) {
  const ScopedVariable server(kServer, node.Socket());
  return Ostrafel(arguments);
}

void ScalingTest::LoadOn(const RedisNode& node, const Arguments& arguments) {
  const ScopedVariable server(kServer, node.Socket());
  Load(arguments);
}

void ScalingTest::ExpectFailureOn(const RedisNode& node, const Arguments& arguments,
                                  const std::string& err) {
  const ScopedVariable server(kServer, node.Socket());
  ExpectFailure(arguments, err);
}

std::string ScalingTest::PlainDump(const std::vector<Arguments>& runs) {
  (void)store.Run("FLUSHALL");
  for (const Arguments& run : runs) Load(run);
  return store.Dump();
}

bool ScalingTest::WasReplied(const std::string& text) const {
  for (const model::Flight& flight : recording.flights) {
    for (const model::Reply& reply : flight.replies) {
      if (reply.text == text) return true;
    }
  }
  return false;
}
