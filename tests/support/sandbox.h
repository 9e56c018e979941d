// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The private world that scripts/sandbox makes: a server, its configuration and runtime files, the
// include directory. Test programs that need it link sandbox_main.cpp, which starts them in one.
#ifndef OSTRAFEL_TESTS_SUPPORT_SANDBOX_H_
#define OSTRAFEL_TESTS_SUPPORT_SANDBOX_H_

#include <optional>
#include <string>

/// The server's own socket.
std::string ServerSocket();

/// True when nothing uses port 6379: always in a network of the sandbox's own, by luck on the
/// machine's.
bool DefaultPortIsFree();

inline constexpr const char* kRedisConf = "/etc/redis/redis.conf";
inline constexpr const char* kIncludeDirectory = "/usr/local/nginx/www";

/// Reads a whole file.
std::string ReadFile(const std::string& path);

/// Writes a whole file; nothing removes it.
void WriteFile(const std::string& path, const std::optional<std::string>& content);

/// Removes everything that is in the include directory.
void EmptyIncludeDirectory();

/// Puts a file into the include directory, making the folders that lead to it.
void Include(const std::string& name, const std::string& content);

/// What the server publishes for its clients: each runtime file's content, or no such file.
struct RuntimeFiles {
  std::optional<std::string> port = "0";
  std::optional<std::string> unixsocket;
  /// Empty, so that nothing is said about a missing file and nobody authenticates.
  std::optional<std::string> requirepass = "";
};

/// The directory of the runtime files.
std::string RuntimeDirectory();

/// Makes the runtime files what files says.
void Publish(const RuntimeFiles& files);

#endif  // OSTRAFEL_TESTS_SUPPORT_SANDBOX_H_
