// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/server_choice.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "connection/connection_state.h"
#include "live/session.h"
#include "support/recorder.h"
#include "support/sandbox.h"
#include "support/scoped_setting.h"
#include "support/temp_directory.h"
#include "support/test_store.h"

namespace ostrafel {

namespace {

TEST(Endpoint, IsAPortOrAHostAndAPort) {
  const struct {
    const char* text;
    const char* host;
    int port;
  } cases[] = {{"6379", "", 6379},
               {"1", "", 1},
               {"065535", "", 65535},
               {"127.0.0.1:7000", "127.0.0.1", 7000},
               {"bmc.example:80", "bmc.example", 80},
               {"[::1]:6379", "::1", 6379}};
  for (const auto& c : cases) {
    ServerChoice choice;
    EXPECT_TRUE(ParseEndpoint(c.text, &choice)) << c.text;
    EXPECT_EQ(choice.host, c.host) << c.text;
    EXPECT_EQ(choice.port, c.port) << c.text;
  }
}

TEST(Endpoint, IsNothingElse) {
  for (const char* text :
       {"",          ":",        "host",  "host:",   ":6379",  "host:0", "0",
        "65536",     "-1",       "+1",    " 1",      "1 ",     "1x",     "99999999999999999999",
        "host:port", "::1:6379", "[::1]", "[]:6379", "[:6379", "[::1:1"}) {
    ServerChoice choice;
    choice.host = "before";
    choice.port = 7;
    EXPECT_FALSE(ParseEndpoint(text, &choice)) << text;
    EXPECT_EQ(choice.host, "before") << text;
    EXPECT_EQ(choice.port, 7) << text;
  }
}

// What a call raises.
template <typename Call>
std::string ErrorOf(const Call& call) {
  try {
    (void)call();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no error";
}

TEST(Password, IsTheFirstLineOfTheFile) {
  const TempDirectory folder;
  const struct {
    std::string content;
    std::string password;
  } cases[] = {{"secret", "secret"},
               {"secret\n", "secret"},
               {"secret\r\n", "secret"},
               {" two words \nmore\n", " two words "},
               {std::string("n\0l\xff\n", 5), std::string("n\0l\xff", 4)},
               {"\nsecret\n", ""},
               {"", ""},
               {std::string(5000, 'x') + "\n", std::string(5000, 'x')}};
  for (const auto& c : cases) {
    EXPECT_EQ(ReadPassword(folder.Write("password", c.content)), c.password) << c.content;
  }
}

TEST(Password, NeedsAFileThatCanBeRead) {
  const TempDirectory folder;
  EXPECT_EQ(ErrorOf([&] { return ReadPassword(folder.path("none")); }),
            folder.path("none") + ": No such file or directory");
  EXPECT_EQ(ErrorOf([&] { return ReadPassword(folder.path()); }),
            folder.path() + ": Is a directory");
}

TEST(Password, HasAnEnd) {
  const TempDirectory folder;
  const std::string longest(65536, 'x');
  EXPECT_EQ(ReadPassword(folder.Write("longest", longest + "\n")), longest);
  for (const std::string& path :
       {folder.Write("longer", longest + "x"), std::string("/dev/zero")}) {
    EXPECT_EQ(ErrorOf([&] { return ReadPassword(path); }),
              path + ": its first line is too long for a password");
  }
}

// The server that a test chooses, or the loader's files name.
class ChosenServer : public testing::Test {
 protected:
  ChosenServer() : store(ServerSocket()) { Connection = {}; }
  ~ChosenServer() override {
    (void)store.Run(model::Command{"CONFIG", "SET", "requirepass", ""});
    Connection = {};
  }

  // Whether the connection that is made can be used.
  static std::string Ask(const ServerChoice& choice) {
    const StoreConnection connection = ConnectTo(choice);
    return std::string(TextOf(*AskServer(connection.get(), {"PING"})));
  }

  static std::string Trouble(const ServerChoice& choice) {
    return ErrorOf([&] { return Ask(choice); });
  }

  // Trouble without what looking for the server prints.
  static std::string TroubleOnly(const ServerChoice& choice) {
    testing::internal::CaptureStderr();
    std::string trouble = Trouble(choice);
    (void)testing::internal::GetCapturedStderr();
    return trouble;
  }

  void Lock() { (void)store.Run(model::Command{"CONFIG", "SET", "requirepass", "two words"}); }

  static ServerChoice Socket(const std::string& path = ServerSocket()) {
    ServerChoice choice;
    choice.socket_path = path;
    return choice;
  }

  static ServerChoice LoadersServer(const std::string& password = "") {
    RuntimeFiles files;
    files.unixsocket = ServerSocket();
    files.requirepass = password;
    Publish(files);
    return {};
  }

  TestStore store;
};

TEST_F(ChosenServer, IsFoundAtItsSocket) { EXPECT_EQ(Ask(Socket()), "PONG"); }

TEST_F(ChosenServer, IsFoundAtItsPort) {
  if (!DefaultPortIsFree()) GTEST_SKIP() << "port 6379 is in use on this machine";
  Recorder recorder("", ServerSocket(), Recorder::Transport::kTcp);
  recorder.Watch(getpid());
  ServerChoice choice;
  ASSERT_TRUE(ParseEndpoint("6379", &choice));
  EXPECT_EQ(Ask(choice), "PONG");
  ASSERT_TRUE(ParseEndpoint("127.1:6379", &choice));
  EXPECT_EQ(Ask(choice), "PONG");
  choice.socket_path = ServerSocket();  // wins
  EXPECT_EQ(Ask(choice), "PONG");
  EXPECT_EQ(recorder.Finish().connections, 2);
}

TEST_F(ChosenServer, IsTheLoadersWithoutAChoice) { EXPECT_EQ(Ask(LoadersServer()), "PONG"); }

TEST_F(ChosenServer, TakesThePasswordOfTheLoadersFiles) {
  Lock();
  EXPECT_EQ(Ask(LoadersServer("two words")), "PONG");
}

TEST_F(ChosenServer, TakesThePasswordOfTheUserInstead) {
  Lock();
  ServerChoice choice = LoadersServer("wrong");
  choice.password = "two words";
  EXPECT_EQ(Ask(choice), "PONG");
  choice = Socket();
  choice.password = "two words";
  EXPECT_EQ(Ask(choice), "PONG");
}

TEST_F(ChosenServer, TakesAnEmptyPasswordForNone) {
  ServerChoice choice = LoadersServer("not asked for");
  choice.password = "";
  EXPECT_EQ(Ask(choice), "PONG");
}

TEST_F(ChosenServer, SaysWhyItRefusesAPassword) {
  ServerChoice choice = Socket();
  choice.password = "not asked for";
  EXPECT_EQ(Trouble(choice).substr(0, 39), "Redis answers AUTH with: ERR AUTH <pass");
  Lock();
  EXPECT_EQ(Trouble(choice),
            "Redis answers AUTH with: WRONGPASS invalid username-password pair or user is "
            "disabled.");
  EXPECT_EQ(TroubleOnly(LoadersServer("wrong")), Trouble(choice));
}

TEST_F(ChosenServer, IsOneThatTakesPasswordsWithOkOnly) {
  const std::string socket = RuntimeDirectory() + "/recorder.sock";
  Recorder recorder(socket, ServerSocket());
  recorder.Watch(getpid());
  ServerChoice choice = Socket(socket);
  choice.password = "secret";
  std::size_t flight = 0;
  for (const char* answer : {"+OKAY\r\n", "$2\r\nOK\r\n", ":0\r\n", "$-1\r\n", "*0\r\n"}) {
    recorder.Answer(flight++, answer);
    EXPECT_EQ(Trouble(choice), "Redis answers AUTH with something else than it should") << answer;
  }
  recorder.CutAfter(flight, 0);
  EXPECT_EQ(Trouble(choice), "the connection to Redis failed: Server closed the connection");
}

TEST_F(ChosenServer, IsNamedWhenItCannotBeReached) {
  const TempDirectory folder;
  const std::string missing = folder.path("none.sock");
  EXPECT_EQ(Trouble(Socket(missing)),
            "no connection to Redis at " + missing + ": No such file or directory");
  const std::string file = folder.Write("file", "");
  EXPECT_EQ(Trouble(Socket(file)), "no connection to Redis at " + file + ": Connection refused");
  if (!DefaultPortIsFree()) GTEST_SKIP() << "port 6379 is in use on this machine";
  ServerChoice choice;
  choice.port = 6379;
  EXPECT_EQ(Trouble(choice), "no connection to Redis at 127.0.0.1:6379: Connection refused");
  choice.host = "::1";
  EXPECT_EQ(Trouble(choice).substr(0, 39), "no connection to Redis at [::1]:6379: C");
}

TEST_F(ChosenServer, IsLookedForAsTheLoaderDoes) {
  RuntimeFiles files;
  files.port = std::nullopt;
  Publish(files);
  EXPECT_EQ(TroubleOnly({}), "no Redis server is found where the loader looks for it");
  files.port = "0";
  files.unixsocket = "/nowhere.sock";
  Publish(files);
  EXPECT_EQ(TroubleOnly({}), "no connection to Redis at /nowhere.sock: No such file or directory");
}

}  // namespace

}  // namespace ostrafel
