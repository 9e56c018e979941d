// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// How the program finds its server and what it says when it does not.
#include <filesystem>
#include <optional>
#include <string>

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

  std::string file;
};

TEST_F(FindingTheServer, FollowsTheRuntimeFiles) {
  const std::string no_connection = kNoConnection;
  const std::string overflow = "strtol: Numerical result out of range\n" + no_connection;
  const std::string missing = kMissingFile;
  const std::string server = ServerSocket();
  const bool is_wide = ProgramHas64Bits();
  const struct {
    RuntimeFiles files;
    std::string err;
  } cases[] = {
      {{"0", server}, ""},
      {{"0", server, std::nullopt}, missing},
      {{"0", RuntimeDirectory() + "/none.sock"}, no_connection},
      {{"0", server + "\n"}, no_connection},
      {{"0", std::nullopt, std::nullopt}, missing + missing + no_connection},
      {{std::nullopt, server}, missing + no_connection},
      // A socket wins over any number, of which no other than the default is a port.
      {{"6380", server}, ""},
      {{"6380", std::nullopt}, missing + no_connection},
      {{"63a9", server}, no_connection},
      {{"", server}, no_connection},
      {{"-1", server}, no_connection},
      {{" 0", server}, no_connection},
      // A long has to hold it, and the lower half of one is taken.
      {{"2147483647", server}, ""},
      {{"2147483648", server}, is_wide ? "" : overflow},
      {{"9223372036854775807", server}, is_wide ? "" : overflow},
      {{"9223372036854775808", server}, overflow},
      {{"99999999999999999999", server}, overflow},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.files.port.value_or("no port") + " " + c.files.unixsocket.value_or("no socket"));
    Publish(c.files);
    (void)store.Run("FLUSHALL");
    // What is asked for comes later.
    const bool is_found = c.err.find(no_connection) == std::string::npos;
    const Finished run = Ostrafel({is_found ? "create" : "no action", file, "/r"});
    EXPECT_EQ(run.out, is_found ? kSuccessLine : "");
    EXPECT_EQ(run.err, c.err);
    EXPECT_EQ(run.status, is_found ? 0 : 255);
    EXPECT_EQ(store.Dump(), is_found ? "hash | /r | A | 1\n" : "");
  }
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

TEST_F(FindingTheServer, APasswordIsSentAsOneArgument) {
  (void)store.Run(model::Command{"CONFIG", "SET", "requirepass", "two \"words\" %s"});
  Publish({"0", ServerSocket(), "two \"words\" %s"});
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

TEST_F(FindingTheServer, AnotherPasswordIsNoConnectionAndWithoutOneEveryCommandIsRefused) {
  (void)store.Run("CONFIG | SET | requirepass | secret");
  for (const char* password : {"wrong", "secret\n"}) {
    Publish({"0", ServerSocket(), password});
    ExpectFailure({"create", file, "/r"}, kNoConnection);
  }
  Publish({"0", ServerSocket(), ""});
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

}  // namespace
