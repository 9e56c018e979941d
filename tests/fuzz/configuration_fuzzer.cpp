// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What the program finds of the server's configuration. The input is a sequence of records parted
// by the byte 0x1E:
//   1. what the shell's pipeline prints: the runtime directory. The shell itself is too slow to be
//      fuzzed; hostile_config_test.cpp tries the real one
//   2. to 4. the contents of redis.port, redis.unixsocket and redis.requirepass there
//   5. what the server answers
// A record that is missing, or that is the letter x alone, is a file that is not there (a shell
// that cannot be started, a server that is not there).
//
// What the configuration amounts to is stated here a second time, naively. The connection that is
// opened must be the one that this says, with the password in one AUTH.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "connection/connection_config.h"
#include "connection/connection_state.h"
#include "connection/store_connection.h"
#include "fuzz/arena.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/machine.h"
#include "fuzz/memory_server.h"
#include "model/endpoint.h"

namespace {

struct World {
  std::optional<std::string> pipeline_output;
  std::optional<std::string> port;
  std::optional<std::string> unixsocket;
  std::optional<std::string> requirepass;
  std::optional<std::string> answer;
};

World MakeWorld(const std::vector<std::string_view>& records) {
  const auto content = [&](std::size_t i) -> std::optional<std::string> {
    if (i >= records.size() || records[i] == "x") return std::nullopt;
    return std::string(records[i]);
  };
  return {content(0), content(1), content(2), content(3), content(4)};
}

// What must become of it: the address ("" for none), the password, the messages.
struct Expected {
  std::string address;
  std::string password;
  std::string err;
};

constexpr std::size_t kLongestText = 1023;

// The C string that one fgets leaves; nothing at the end of the file.
std::optional<std::string> FirstLine(const std::string& content) {
  if (content.empty()) return std::nullopt;
  std::string line = content.substr(0, kLongestText);
  line = line.substr(0, line.find('\n') == std::string::npos ? line.size() : line.find('\n') + 1);
  return line.substr(0, line.find('\0'));
}

std::string PathIn(const std::string& directory, const std::string& key) {
  return (directory + "/redis." + key).substr(0, kLongestText);
}

std::optional<std::string> ReadKey(const Machine& machine, const std::string& directory,
                                   const std::string& key, std::string* err) {
  if (key.size() + directory.size() > kLongestText) return std::nullopt;
  const auto file = machine.files.find(PathIn(directory, key));
  if (file != machine.files.end()) return FirstLine(file->second);
  *err += "fopen: No such file or directory\n";
  return std::nullopt;
}

bool IsPort(const std::string& text) {
  const auto is_accepted = [](char c) { return c == '\n' || ('0' <= c && c <= '9'); };
  return !text.empty() && std::all_of(text.begin(), text.end(), is_accepted);
}

// The number before the first line end; nothing beyond the largest 64-bit one.
std::optional<std::uint64_t> Number(const std::string& text) {
  // A line end in front is white space, and the text has one line end at most.
  std::uint64_t number = 0;
  for (const char c : text) {
    if (c == '\n') continue;
    const auto digit = static_cast<std::uint64_t>(c - '0');
    if (number > (std::uint64_t{INT64_MAX} - digit) / 10) return std::nullopt;
    number = number * 10 + digit;
  }
  return number;
}

Expected Expect(const World& world, const Machine& machine) {
  Expected expected;
  if (!world.pipeline_output) return expected;
  const std::string directory = FirstLine(*world.pipeline_output).value_or("");
  const std::optional<std::string> port_text = ReadKey(machine, directory, "port", &expected.err);
  if (!port_text || !IsPort(*port_text)) return expected;
  const std::optional<std::uint64_t> number = Number(*port_text);
  if (!number) {
    expected.err += "strtol: Numerical result out of range\n";
    return expected;
  }
  const std::uint64_t low_bits = *number % (std::uint64_t{1} << 32);
  const bool is_port = low_bits >= 1 && low_bits < (std::uint64_t{1} << 31);
  const std::optional<std::string> socket =
      ReadKey(machine, directory, "unixsocket", &expected.err);
  if (!socket && is_port) {
    if (low_bits != 6379) return expected;
    expected.address = "127.0.0.1:6379";
  } else {
    expected.address = socket.value_or("(null)");
    // An address that is the empty text is one all the same.
    if (expected.address.empty()) expected.address = "(empty)";
  }
  expected.password = ReadKey(machine, directory, "requirepass", &expected.err).value_or("");
  return expected;
}

// Two files may have one path: when it is cut, or when the directory holds a NUL.
Machine MakeMachine(const World& world) {
  Machine machine;
  machine.pipeline_output = world.pipeline_output;
  const std::string directory = FirstLine(world.pipeline_output.value_or("")).value_or("");
  if (world.requirepass) machine.files[PathIn(directory, "requirepass")] = *world.requirepass;
  if (world.unixsocket) machine.files[PathIn(directory, "unixsocket")] = *world.unixsocket;
  if (world.port) machine.files[PathIn(directory, "port")] = *world.port;
  return machine;
}

// Opens the connection as a run does, and closes it. Returns whether there was one.
bool Open(Machine* machine) {
  const AllocateInArena allocate_in_arena(false);
  const OnMachine on_machine(machine);
  return ostrafel::OpenStoreConnection() != nullptr;
}

std::string AddressOf(const Machine& machine) {
  if (machine.connections.empty()) return "";
  if (machine.connections.size() > 1) return "(more than one)";
  return machine.connections[0].empty() ? "(empty)" : machine.connections[0];
}

void CheckOpening(const Expected& expected, const World& world, Machine* machine) {
  ByteServer server(world.answer ? std::string_view(*world.answer) : std::string_view(), 16);
  machine->server = world.answer ? &server : nullptr;
  const bool is_open = Open(machine);
  ExpectSame("the address", expected.address, AddressOf(*machine));
  ExpectSame("standard output", "", machine->out);

  const bool asks = !expected.address.empty() && world.answer && !expected.password.empty();
  const std::vector<model::Command> auth = {{"AUTH", expected.password}};
  ExpectSame("the commands", asks ? Describe(auth) : "", Describe(server.commands()));
  const bool is_accepted =
      asks ? world.answer->substr(0, 5) == "+OK\r\n" : !expected.address.empty() && world.answer;
  ExpectSame("the connection", is_accepted ? "open" : "none", is_open ? "open" : "none");
}

}  // namespace

void TestOneInput(std::string_view input) {
  ostrafel::Connection = {};
  const World world = MakeWorld(SplitRecords(input));
  Machine machine = MakeMachine(world);
  Expected expected = Expect(world, machine);
  CheckOpening(expected, world, &machine);
  ExpectSame("standard error", expected.err, machine.err);

  // What was read once is not read again.
  const bool is_remembered = !expected.address.empty();
  machine.connections.clear();
  machine.opened_paths.clear();
  CheckOpening(expected, world, &machine);
  ExpectSame("standard error", is_remembered ? "" : expected.err, machine.err);
  if (is_remembered && !machine.opened_paths.empty()) {
    ReportDifference("the files", "none", machine.opened_paths[0]);
  }
  ostrafel::Connection = {};
}
