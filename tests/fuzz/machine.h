// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The machine that the program meets in a fuzz target: files, the shell behind popen and the
// server's end of the connection are all in memory. The calls that reach for the real ones are
// redirected with the linker's --wrap (kept in CMakeLists.txt), so that a run costs hardly a system
// call, and nothing of the machine that fuzzes is read or changed.
#ifndef OSTRAFEL_TESTS_FUZZ_MACHINE_H_
#define OSTRAFEL_TESTS_FUZZ_MACHINE_H_

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The server's end of a connection.
class Peer {
 public:
  virtual ~Peer() = default;

  /// Takes what the program writes. False: the connection is broken (EPIPE).
  virtual bool Receive(std::string_view bytes) = 0;

  /// Copies at most size bytes for the program to buffer and returns how many; 0: closed.
  virtual std::size_t Send(char* buffer, std::size_t size) = 0;
};

struct Machine {
  std::map<std::string, std::string, std::less<>> files;  ///< Path -> content of a regular file.
  std::optional<std::string> pipeline_output;             ///< What popen yields; nothing: it fails.
  Peer* server = nullptr;                                 ///< Nothing: no connection can be made.

  // What the program did.
  std::vector<std::string> opened_paths;  ///< Every path given to fopen.
  std::vector<std::string> connections;   ///< The socket's path, or host + ":" + port.
  std::string out;                        ///< What it printed on standard output.
  std::string err;                        ///< What it printed on standard error.
};

/// Puts the program on the machine until the end of the scope. One at a time.
class OnMachine {
 public:
  explicit OnMachine(Machine* machine);
  ~OnMachine();
  OnMachine(const OnMachine&) = delete;
  OnMachine& operator=(const OnMachine&) = delete;
};

/// Reports that the program did not do what it must do, on the real standard error, and aborts, so
/// that libFuzzer keeps the input.
[[noreturn]] void ReportDifference(const char* what, const std::string& expected,
                                   const std::string& found);

/// Reports when the two texts differ.
void ExpectSame(const char* what, const std::string& expected, const std::string& found);

#endif  // OSTRAFEL_TESTS_FUZZ_MACHINE_H_
