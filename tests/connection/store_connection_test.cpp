// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "connection/store_connection.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>

#include "connection/connection_state.h"
#include "support/recorder.h"
#include "support/sandbox.h"
#include "support/test_store.h"

namespace ostrafel {

namespace {

std::ptrdiff_t OpenDescriptors() {
  const std::filesystem::directory_iterator listing("/proc/self/fd");
  return std::distance(begin(listing), end(listing));
}

class Connection : public testing::Test {
 protected:
  Connection() : store(ServerSocket()) { ostrafel::Connection = {}; }
  ~Connection() override {
    (void)store.Run("CONFIG | SET | requirepass | ");
    ostrafel::Connection = {};
  }

  static void PublishSocket(const std::string& password) {
    RuntimeFiles files;
    files.unixsocket = ServerSocket();
    files.requirepass = password;
    Publish(files);
  }

  TestStore store;
};

TEST_F(Connection, IsMadeOverTheUnixSocket) {
  PublishSocket("");
  const StoreConnection connection = OpenStoreConnection();
  ASSERT_TRUE(connection);
  EXPECT_EQ(connection->connection_type, REDIS_CONN_UNIX);
}

TEST_F(Connection, IsAuthenticatedWhenThereIsAPassword) {
  for (const char* password : {"secret", "two words", "%s \"quoted\" \\", "*1\r\n"}) {
    ostrafel::Connection = {};
    (void)store.Run(model::Command{"CONFIG", "SET", "requirepass", password});
    // The first line is all that a runtime file can say.
    const std::string first_line =
        std::string(password).substr(0, std::string(password).find('\n'));
    PublishSocket(first_line);
    const StoreConnection connection = OpenStoreConnection();
    EXPECT_EQ(connection != nullptr, first_line == password) << password;
  }
}

TEST_F(Connection, IsNotMadeWithAWrongPassword) {
  (void)store.Run("CONFIG | SET | requirepass | secret");
  PublishSocket("wrong");
  EXPECT_FALSE(OpenStoreConnection());
}

TEST_F(Connection, APasswordThatTheServerDoesNotAskForIsRefusedByIt) {
  PublishSocket("secret");
  EXPECT_FALSE(OpenStoreConnection());
}

TEST_F(Connection, WithoutThePasswordItIsMadeAndTheServerRefusesLater) {
  (void)store.Run("CONFIG | SET | requirepass | secret");
  PublishSocket("");
  EXPECT_TRUE(OpenStoreConnection());
}

TEST_F(Connection, LeavesNoDescriptorOpen) {
  PublishSocket("wrong");
  const auto before = OpenDescriptors();
  EXPECT_FALSE(OpenStoreConnection());
  ostrafel::Connection = {};
  PublishSocket("");
  EXPECT_TRUE(OpenStoreConnection());
  RuntimeFiles nowhere;
  nowhere.unixsocket = "/nowhere.sock";
  ostrafel::Connection = {};
  Publish(nowhere);
  EXPECT_FALSE(OpenStoreConnection());
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(Connection, NeedsAConfigurationAndAKnownType) {
  EXPECT_FALSE(ConnectStore(nullptr));
  ConnectionConfig config;
  config.socket_path = ServerSocket();
  EXPECT_FALSE(ConnectStore(&config));
  config.type = 3;
  EXPECT_FALSE(ConnectStore(&config));
  config.type = UnixSocket;
  EXPECT_TRUE(ConnectStore(&config));
}

TEST_F(Connection, NothingListeningIsNoConnection) {
  ConnectionConfig config;
  config.type = UnixSocket;
  config.socket_path = "/nowhere.sock";
  EXPECT_FALSE(ConnectStore(&config));
  if (!DefaultPortIsFree()) GTEST_SKIP() << "port 6379 is in use on this machine";
  config.type = Tcp;
  config.port = 6379;
  EXPECT_FALSE(ConnectStore(&config));
}

TEST_F(Connection, TcpGoesToTheLoopbackInterfaceUnlessAHostIsNamed) {
  if (!DefaultPortIsFree()) GTEST_SKIP() << "port 6379 is in use on this machine";
  const Recorder recorder("", ServerSocket(), Recorder::Transport::kTcp);
  ConnectionConfig config;
  config.type = Tcp;
  config.port = 6379;
  const StoreConnection by_default = ConnectStore(&config);
  ASSERT_TRUE(by_default);
  EXPECT_STREQ(by_default->tcp.host, "127.0.0.1");
  config.host = "127.1";  // looked up as a name is, without a need for an entry in /etc/hosts
  const StoreConnection by_name = ConnectStore(&config);
  ASSERT_TRUE(by_name);
  EXPECT_STREQ(by_name->tcp.host, "127.1");
}

TEST_F(Connection, ClosingSaysWhetherThereWasOne) {
  EXPECT_EQ(CloseStoreConnection(nullptr), 1U);
  EXPECT_EQ(CloseStoreConnection(redisConnectUnix(ServerSocket().c_str())), 0U);
}

TEST_F(Connection, AuthenticationNeedsBothArguments) {
  EXPECT_EQ(Authenticate(nullptr, "secret"), 1U);
  EXPECT_EQ(Authenticate(store.context(), nullptr), 1U);
}

TEST_F(Connection, AuthenticationTakesOnlyTheStatusOk) {
  const std::string socket = RuntimeDirectory() + "/recorder.sock";
  Recorder recorder(socket, ServerSocket());
  recorder.Watch(getpid());
  StoreConnection connection(redisConnectUnix(socket.c_str()));
  const struct {
    const char* reply;
    unsigned result;
  } cases[] = {
      {"+OK\r\n", 0U},     {"+OKAY\r\n", 1U}, {"+O\r\n", 1U},  {"$2\r\nOK\r\n", 1U},
      {"-ERR no\r\n", 1U}, {":0\r\n", 1U},    {"$-1\r\n", 1U}, {"*0\r\n", 1U},
  };
  std::size_t flight = 0;
  for (const auto& c : cases) {
    recorder.Answer(flight++, c.reply);
    EXPECT_EQ(Authenticate(connection.get(), "two words"), c.result) << c.reply;
  }
  recorder.CutAfter(flight, 0);
  EXPECT_EQ(Authenticate(connection.get(), "two words"), 1U);
  connection.reset();
  EXPECT_EQ(Describe(recorder.Finish().flights).substr(0, 20), "AUTH | two words\n--\n");
}

}  // namespace

}  // namespace ostrafel
