// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "faults/fault_fixture.h"

#include "support/program.h"
#include "support/sandbox.h"

FaultTest::FaultTest() { EmptyIncludeDirectory(); }

FaultTest::~FaultTest() { EmptyIncludeDirectory(); }

void FaultTest::TearDown() {
  if (is_without_tcp_) {
    GTEST_SKIP() << "port 6379 is in use on this machine: only the Unix socket was tested";
  }
}

std::vector<FaultTest::Transport> FaultTest::Transports() {
  is_without_tcp_ = !DefaultPortIsFree();
  if (is_without_tcp_) return {Transport::kUnix};
  return {Transport::kUnix, Transport::kTcp};
}

std::string FaultTest::Announcement(Transport transport) {
  return transport == Transport::kTcp ? "fopen: No such file or directory\n" : "";
}

FaultedRun FaultTest::Run(const std::vector<std::string>& arguments, const model::Store& store,
                          const std::function<void(ScriptedServer&)>& plan, Transport transport,
                          const std::string& password) {
  const bool is_unix = transport == Transport::kUnix;
  const std::string socket = RuntimeDirectory() + "/scripted.sock";
  RuntimeFiles files;
  files.port = is_unix ? "0" : "6379";
  if (is_unix) files.unixsocket = socket;
  files.requirepass = password;
  Publish(files);

  ScriptedServer server(is_unix ? socket : "", store);
  if (plan) plan(server);
  RunOptions options;
  options.on_start = [&](int process_id) { server.Watch(process_id); };
  FaultedRun run;
  const auto start = std::chrono::steady_clock::now();
  run.finished = RunProgram(ProgramCommand(arguments), options);
  run.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - start);
  run.recording = server.Finish();
  run.store = server.Contents();
  EXPECT_LE(run.recording.connections, 1);
  return run;
}
