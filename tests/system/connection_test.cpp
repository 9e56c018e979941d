// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// How the program finds its server and what it says when it does not.
#include <filesystem>
#include <optional>
#include <string>

#include "driver/usage_text.h"
#include "support/program.h"
#include "system/file_capabilities.h"
#include "system/system_fixture.h"

namespace {

constexpr const char* kMissingFile = "fopen: No such file or directory\n";
constexpr const char* kNoConnection = "Failed to connect to Redis\n";

class FindingTheServer : public SystemTest {
 protected:
  FindingTheServer() {
    publishes_socket = false;
    file = tree.Write("a.json", R"({"A": 1})");
  }
  ~FindingTheServer() override { (void)store.Run("CONFIG | SET | requirepass | "); }

  // Publishes these files; the server's own socket unless they name another.
  void PublishServer(const std::string& port, const std::optional<std::string>& password) {
    RuntimeFiles files;
    files.port = port;
    files.unixsocket = ServerSocket();
    files.requirepass = password;
    Publish(files);
  }

  std::string file;
};

TEST_F(FindingTheServer, ThroughItsSocketFile) {
  PublishServer("0", "");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

TEST_F(FindingTheServer, ASocketWinsOverAPort) {
  PublishServer("6380", "");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

TEST_F(FindingTheServer, AMissingPasswordFileIsReportedAndTheRunGoesOn) {
  PublishServer("0", std::nullopt);
  const Finished run = Ostrafel({"create", file, "/r"});
  EXPECT_EQ(run.out, kSuccessLine);
  EXPECT_EQ(run.err, kMissingFile);
  EXPECT_EQ(run.status, 0);
}

TEST_F(FindingTheServer, ThroughTcpOnTheDefaultPort) {
  if (!DefaultPortIsFree()) GTEST_SKIP() << "port 6379 is in use on this machine";
  RuntimeFiles files;
  files.port = "6379\n";
  Publish(files);
  Recorder recorder("", ServerSocket(), Recorder::Transport::kTcp);
  RunOptions options;
  options.on_start = [&](int process_id) { recorder.Watch(process_id); };
  const Finished run = RunProgram(ProgramCommand({"create", file, "/r"}), options);
  EXPECT_EQ(run.out, kSuccessLine);
  EXPECT_EQ(run.err, kMissingFile);  // the socket file
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(Describe(recorder.Finish().flights),
            "keys | /r\n--\nkeys | /r/*\n--\nkeys | &&/r/*\n--\nHSET | /r | A | 1\n");
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

TEST_F(FindingTheServer, NothingOnTheDefaultPortIsNoConnection) {
  if (!DefaultPortIsFree()) GTEST_SKIP() << "port 6379 is in use on this machine";
  RuntimeFiles files;
  files.port = "6379";
  Publish(files);
  ExpectFailure({"create", file, "/r"}, std::string(kMissingFile) + kNoConnection);
}

TEST_F(FindingTheServer, AnotherPortIsNotTried) {
  RuntimeFiles files;
  files.port = "6380";
  Publish(files);
  ExpectFailure({"create", file, "/r"}, std::string(kMissingFile) + kNoConnection);
}

TEST_F(FindingTheServer, AMissingPortFileIsNoConnection) {
  RuntimeFiles files;
  files.port = std::nullopt;
  files.unixsocket = ServerSocket();
  Publish(files);
  ExpectFailure({"create", file, "/r"}, std::string(kMissingFile) + kNoConnection);
}

TEST_F(FindingTheServer, APortThatIsNoNumberIsNoConnection) {
  for (const char* port : {"63a9", "", "-1", " 0"}) {
    PublishServer(port, "");
    ExpectFailure({"create", file, "/r"}, kNoConnection);
  }
}

TEST_F(FindingTheServer, APortThatOverflowsIsReported) {
  PublishServer("99999999999999999999", "");
  ExpectFailure({"create", file, "/r"},
                std::string("strtol: Numerical result out of range\n") + kNoConnection);
}

TEST_F(FindingTheServer, APortBeyondTheLargestLongIsReported) {
  PublishServer(ProgramHas64Bits() ? "9223372036854775808" : "2147483648", "");
  ExpectFailure({"create", file, "/r"},
                std::string("strtol: Numerical result out of range\n") + kNoConnection);
}

TEST_F(FindingTheServer, TheLargestLongIsAPortThatASocketWinsOver) {
  PublishServer(ProgramHas64Bits() ? "9223372036854775807" : "2147483647", "");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

TEST_F(FindingTheServer, APortBeyond32BitsIsNarrowedWhereALongHoldsIt) {
  PublishServer("2147483648", "");
  if (ProgramHas64Bits()) {
    Load({"create", file, "/r"});
    EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
  } else {
    ExpectFailure({"create", file, "/r"},
                  std::string("strtol: Numerical result out of range\n") + kNoConnection);
  }
}

TEST_F(FindingTheServer, NeitherPortNorSocketIsNoConnection) {
  RuntimeFiles files;
  files.requirepass = std::nullopt;
  Publish(files);
  ExpectFailure({"create", file, "/r"}, std::string(kMissingFile) + kMissingFile + kNoConnection);
}

TEST_F(FindingTheServer, ASocketWhereNothingListensIsNoConnection) {
  RuntimeFiles files;
  files.unixsocket = RuntimeDirectory() + "/none.sock";
  Publish(files);
  ExpectFailure({"create", file, "/r"}, kNoConnection);
}

TEST_F(FindingTheServer, ASocketPathWithALineEndIsAnotherPath) {
  RuntimeFiles files;
  files.unixsocket = ServerSocket() + "\n";
  Publish(files);
  ExpectFailure({"create", file, "/r"}, kNoConnection);
}

TEST_F(FindingTheServer, APasswordIsSentAsOneArgument) {
  (void)store.Run(model::Command{"CONFIG", "SET", "requirepass", "two \"words\" %s"});
  PublishServer("0", "two \"words\" %s");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

TEST_F(FindingTheServer, AWrongPasswordIsNoConnection) {
  (void)store.Run("CONFIG | SET | requirepass | secret");
  PublishServer("0", "wrong");
  ExpectFailure({"create", file, "/r"}, kNoConnection);
}

TEST_F(FindingTheServer, APasswordWithALineEndIsAnotherPassword) {
  (void)store.Run("CONFIG | SET | requirepass | secret");
  PublishServer("0", "secret\n");
  ExpectFailure({"create", file, "/r"}, kNoConnection);
}

TEST_F(FindingTheServer, WithoutThePasswordTheServerRefusesEveryCommand) {
  (void)store.Run("CONFIG | SET | requirepass | secret");
  PublishServer("0", "");
  ExpectFailure({"create", file, "/r"},
                "Some errors occur while creating hash data into database\n"
                "The data in database would be incorrect\n"
                ">>> Fail to write rest of data into redis\n");
}

// Who owns the folder of the runtime files decides what is read and who gets it.
TEST_F(FindingTheServer, RootSendsTheFirstLineOfWhateverThePasswordFileLeadsTo) {
  const std::string secret = tree.Write("secret", "root:hash:1\nsecond line\n");
  std::filesystem::permissions(secret, std::filesystem::perms::none);
  const std::string socket = RuntimeDirectory() + "/chosen.sock";
  const auto sent_by_a_run = [&](const RunOptions& more) {
    Recorder recorder(socket, ServerSocket());
    recorder.Answer(0, "-WRONGPASS no\r\n");
    RuntimeFiles files;
    files.unixsocket = socket;
    files.requirepass = std::nullopt;
    Publish(files);
    std::filesystem::create_symlink(secret, RuntimeDirectory() + "/redis.requirepass");
    RunOptions options = more;
    options.on_start = [&](int process_id) { recorder.Watch(process_id); };
    (void)RunProgram(ProgramCommand({"update", tree.MakeFolder("d"), "/r"}), options);
    return Describe(recorder.Finish().flights);
  };
  EXPECT_EQ(sent_by_a_run({}), "AUTH | root:hash:1\n\n");  // with its line end
  RunOptions as_a_user;
  as_a_user.in_child = GiveUpFileCapabilities;
  EXPECT_EQ(sent_by_a_run(as_a_user), "");
}

TEST_F(FindingTheServer, TheFailureComesBeforeTheActionIsLookedAt) {
  RuntimeFiles files;
  files.unixsocket = RuntimeDirectory() + "/none.sock";
  Publish(files);
  ExpectFailure({"no action", file, "/r"}, kNoConnection);
}

TEST_F(FindingTheServer, AuthenticationIsTheFirstCommand) {
  const std::string socket = RuntimeDirectory() + "/recorder.sock";
  Recorder recorder(socket, ServerSocket());
  recorder.Answer(0, "+OK\r\n");
  RuntimeFiles files;
  files.unixsocket = socket;
  files.requirepass = "secret";
  Publish(files);
  RunOptions options;
  options.on_start = [&](int process_id) { recorder.Watch(process_id); };
  EXPECT_EQ(RunProgram(ProgramCommand({"update", tree.MakeFolder("d"), "/r"}), options).status, 0);
  EXPECT_EQ(Describe(recorder.Finish().flights), "AUTH | secret\n");
}

}  // namespace
