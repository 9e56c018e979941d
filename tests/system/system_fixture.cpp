// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "system/system_fixture.h"

#include <cstddef>
#include <utility>

#include "support/program.h"

namespace {

std::string RecorderSocket() { return RuntimeDirectory() + "/recorder.sock"; }

}  // namespace

SystemTest::SystemTest() : store(ServerSocket()) {
  (void)store.Run("FLUSHALL");
  EmptyIncludeDirectory();
}

SystemTest::~SystemTest() { EmptyIncludeDirectory(); }

Finished SystemTest::Ostrafel(const std::vector<std::string>& arguments,
                              const RunOptions& options) {
  Recorder recorder(RecorderSocket(), ServerSocket());
  if (publishes_socket) {
    RuntimeFiles files;
    files.unixsocket = RecorderSocket();
    Publish(files);
  }
  if (plan) plan(recorder);
  RunOptions watched = options;
  watched.on_start = [&](int process_id) { recorder.Watch(process_id); };
  std::vector<std::string> command = launcher;
  for (const std::string& word : ProgramCommand(arguments)) command.push_back(word);
  Finished finished = RunProgram(command, watched);
  recording = recorder.Finish();
  EXPECT_LE(recording.connections, 1);
  bool is_cut = false;
  for (const model::Flight& flight : recording.flights) is_cut = is_cut || flight.cut_short;
  if (!is_cut) {
    EXPECT_EQ(recording.closed_by_client, recording.connections);
  }
  return finished;
}

void SystemTest::Load(const std::vector<std::string>& arguments) {
  const Finished finished = Ostrafel(arguments);
  EXPECT_EQ(finished.out, kSuccessLine);
  EXPECT_EQ(finished.err, "");
  EXPECT_EQ(finished.status, 0);
}

void SystemTest::LoadDocument(const std::string& action, const std::string& document,
                              const std::string& key) {
  Load({action, tree.Write("a.json", document), key});
}

void SystemTest::ExpectFailure(const std::vector<std::string>& arguments, const std::string& err) {
  const Finished finished = Ostrafel(arguments);
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.err, err);
  EXPECT_EQ(finished.status, 255);
}

std::string SystemTest::Shown(std::string command, const std::string& key,
                              const RunOptions& options) const {
  const std::pair<std::string, std::string> values[] = {{"TREE", tree.path()}, {"KEY", key}};
  for (const auto& [name, value] : values) {
    const std::size_t found = command.find(name);
    if (found != std::string::npos) command.replace(found, name.size(), "'" + value + "'");
  }
  // FAKETTY would have redis-cli print as on a terminal.
  return RunProgram({"/usr/bin/env", "-u", "FAKETTY", "/bin/sh", "-c", command}, options).out;
}
