// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/server_options.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>

#include "support/scoped_variable.h"
#include "support/temp_directory.h"

namespace ostrafel {

namespace {

TEST(ServerOptions, AreGivenWhenAnyOfThemIs) {
  ServerOptions none, socket, port, password;
  EXPECT_FALSE(HasServer(none));
  EXPECT_FALSE(TakeSocket("/s", &socket));
  EXPECT_TRUE(HasServer(socket));
  EXPECT_FALSE(TakeEndpoint("7000", &port));
  EXPECT_TRUE(HasServer(port));
  EXPECT_FALSE(TakePasswordFile("p", &password));
  EXPECT_TRUE(HasServer(password));
}

TEST(ServerOptions, TakeTheLastOfEachKind) {
  ServerOptions server;
  EXPECT_FALSE(TakeSocket("/a", &server));
  EXPECT_FALSE(TakeSocket("/b", &server));
  EXPECT_EQ(FinishServer(server).socket_path, "/b");
  ServerOptions other;
  EXPECT_FALSE(TakeEndpoint("host:1", &other));
  EXPECT_FALSE(TakeEndpoint("65535", &other));
  EXPECT_EQ(FinishServer(other).host, "");
  EXPECT_EQ(FinishServer(other).port, 65535);
}

TEST(ServerOptions, NameOneServer) {
  ServerOptions server;
  EXPECT_FALSE(CheckServer(server));
  EXPECT_FALSE(TakeSocket("/s", &server));
  EXPECT_FALSE(TakePasswordFile("p", &server));
  EXPECT_FALSE(CheckServer(server));
  EXPECT_FALSE(TakeEndpoint("1", &server));
  EXPECT_TRUE(CheckServer(server));
}

TEST(ServerOptions, HaveThePasswordOfTheFileOrElseOfTheEnvironment) {
  const TempDirectory folder;
  ServerOptions server;
  {
    const ScopedVariable variable("OSTRAFEL_PASSWORD", std::nullopt);
    EXPECT_FALSE(FinishServer(server).password);
  }
  {
    const ScopedVariable variable("OSTRAFEL_PASSWORD", "");
    EXPECT_FALSE(FinishServer(server).password) << "an empty variable is none";
  }
  const ScopedVariable variable("OSTRAFEL_PASSWORD", "of the environment");
  EXPECT_EQ(FinishServer(server).password, "of the environment");
  EXPECT_FALSE(TakePasswordFile(folder.Write("password", "of the file\n"), &server));
  EXPECT_EQ(FinishServer(server).password, "of the file");
  EXPECT_FALSE(TakePasswordFile(folder.path("none"), &server));
  EXPECT_THROW((void)FinishServer(server), std::runtime_error);
}

}  // namespace

}  // namespace ostrafel
