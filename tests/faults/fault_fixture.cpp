#include "faults/fault_fixture.h"

#include <filesystem>

#include "support/program.h"
#include "support/sandbox.h"

namespace {

void EmptyIncludeDirectory() {
  for (const auto& entry : std::filesystem::directory_iterator(kIncludeDirectory)) {
    std::filesystem::remove_all(entry.path());
  }
}

}  // namespace

FaultTest::FaultTest() { EmptyIncludeDirectory(); }

FaultTest::~FaultTest() { EmptyIncludeDirectory(); }

std::vector<FaultTest::Transport> FaultTest::Transports() {
  if (!DefaultPortIsFree()) return {Transport::kUnix};
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
  run.reply_bytes = server.BytesSent();
  run.store = server.Contents();
  EXPECT_LE(run.recording.connections, 1);
  return run;
}

void FaultTest::Include(const std::string& name, const std::string& content) {
  const std::filesystem::path path = std::string(kIncludeDirectory) + "/" + name;
  std::filesystem::create_directories(path.parent_path());
  WriteFile(path.string(), content);
}
