// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_FAULTS_FAULT_FIXTURE_H_
#define OSTRAFEL_TESTS_FAULTS_FAULT_FIXTURE_H_

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "model/memory_store.h"
#include "support/process.h"
#include "support/recorder.h"
#include "support/scripted_server.h"
#include "support/temp_directory.h"

/// How a run of the program against a ScriptedServer ended.
struct FaultedRun {
  Finished finished;
  Recording recording;
  model::Store store;                      ///< What the server holds afterwards.
  std::chrono::milliseconds elapsed = {};  ///< From the program's start to its end.
};

/// Runs of the real program against a ScriptedServer that the runtime files lead to. The include
/// directory is empty at the start of every test.
class FaultTest : public testing::Test {
 protected:
  enum class Transport { kUnix, kTcp };

  FaultTest();
  ~FaultTest() override;

  void TearDown() override;

  /// What the machine has: both, except where something else uses port 6379. There the test counts
  /// as skipped when it has come to its end without a failure, so that it does not pass for one
  /// that has tried both.
  std::vector<Transport> Transports();

  /// What the program says before it connects: that there is no socket file, when it is led to TCP.
  static std::string Announcement(Transport transport);

  /// Runs the program with these arguments against a server that holds store and for which plan has
  /// planned faults. With a password, the program is told of it and sends AUTH.
  FaultedRun Run(const std::vector<std::string>& arguments, const model::Store& store,
                 const std::function<void(ScriptedServer&)>& plan,
                 Transport transport = Transport::kUnix, const std::string& password = "");

  TempDirectory tree;

 private:
  bool is_without_tcp_ = false;
};

#endif  // OSTRAFEL_TESTS_FAULTS_FAULT_FIXTURE_H_
