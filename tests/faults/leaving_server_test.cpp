// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A server that leaves while the program writes a pipeline to it. Whatever it has answered, the run
// has failed, and says so for each command that the server never read.
#include "support/leaving_server.h"

#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

#include "faults/fault_fixture.h"
#include "support/program.h"
#include "support/repeated.h"
#include "support/sandbox.h"
#include "support/test_factor.h"

namespace {

const std::string kNoReply = "Failed to get reply\n";
constexpr std::size_t kCount = 1999;  // as many items as a batch holds, less one

std::size_t Occurrences(const std::string& line, const std::string& text) {
  std::size_t count = 0;
  for (std::size_t i = text.find(line); i != std::string::npos; i = text.find(line, i + 1)) ++count;
  return count;
}

// A run of which one pipeline is long.
struct LongRun {
  std::vector<std::string> arguments;
  model::Store store;
  std::size_t commands;  ///< In the pipeline.
  std::string end;       ///< What the program says of the failure at last.
};

// The commands of the pipeline, and whether it is more than a socket takes without a reader.
using Case = std::tuple<std::string, bool>;

class LeavingServerTest : public FaultTest, public testing::WithParamInterface<Case> {
 protected:
  static const std::string& command() { return std::get<0>(GetParam()); }
  static bool is_above_buffers() { return std::get<1>(GetParam()); }

  // What is not read of the long ones, three quarters, is more than the sender's 4 MiB (tcp(7),
  // tcp_wmem) and the server's small buffer hold.
  static std::string Filling() { return std::string(is_above_buffers() ? 4000 : 10, 'v'); }

  std::string WriteMembers() {
    std::string members;
    for (std::size_t i = 0; i < kCount; ++i) {
      members += (i == 0 ? "\"M" : ", \"M") + std::to_string(i) + "\": \"" + Filling() + '"';
    }
    return tree.Write("a.json", '{' + members + '}');
  }

  std::string WriteArray() {
    std::string elements;
    for (std::size_t i = 0; i < kCount; ++i) elements += (i == 0 ? "\"" : ", \"") + Filling() + '"';
    return tree.Write("a.json", R"({"A": [)" + elements + "]}");
  }

  static model::Store KeysBelow(const std::string& key, std::size_t count) {
    model::Store store;
    for (std::size_t i = 0; i < count; ++i) {
      store[key + '/' + Filling() + std::to_string(i)].value = model::Hash{{"f", "v"}};
    }
    return store;
  }

  LongRun MakeLongRun() {
    const std::string rest = ">>> Fail to write rest of data into redis\n";
    if (command() == "HSET") return {{"create", WriteMembers(), "/r"}, {}, kCount, rest};
    if (command() == "RPUSH") return {{"create", WriteArray(), "/r"}, {}, kCount, rest};
    if (command() == "DEL") {
      return {{"create", tree.MakeFolder("empty"), "/r"},
              KeysBelow("/r", kCount),
              kCount,
              "Fail to remove resource tree\n"};
    }
    // An object becomes a scalar: its key goes with all below it, and four fields.
    const std::size_t unlinked = kCount - 4;
    model::Store store = KeysBelow("&&/r/A", unlinked - 1);
    store["&&/r/A"].value = model::Hash{{"f", "v"}};
    return {{"update", tree.Write("a.json", R"({"A": 1})"), "/r"}, store, kCount, rest};
  }

  // Runs the program against a server that leaves so, and returns what it said.
  std::string FailedRun(const LongRun& run, Transport transport, const Departure& departure) {
    const bool is_unix = transport == Transport::kUnix;
    const std::string socket = RuntimeDirectory() + "/leaving.sock";
    RuntimeFiles files;
    files.port = is_unix ? "0" : "6379";
    if (is_unix) files.unixsocket = socket;
    Publish(files);
    LeavingServer server(is_unix ? socket : "", run.store, departure);
    const Finished finished = RunProgram(ProgramCommand(run.arguments), {});
    EXPECT_EQ(server.Join(), departure.read);
    EXPECT_EQ(finished.status, 255);
    EXPECT_EQ(finished.out, "");
    return finished.err;
  }

  // That it is said of each command that was not read, of none that was not sent, and nothing else.
  void Check(const LongRun& run, Transport transport, const Departure& departure) {
    const std::string err = FailedRun(run, transport, departure);
    const std::string begin = Announcement(transport);
    if (command() == "DEL") {
      EXPECT_EQ(err, begin + kNoReply + run.end);
    } else if (is_above_buffers()) {
      EXPECT_TRUE(err == begin + Repeated(kNoReply, run.commands) + run.end) << err.substr(0, 500);
    } else {
      // The program may have sent all before the server left: then the answers that came count.
      EXPECT_GE(Occurrences(kNoReply, err), run.commands - departure.read);
      EXPECT_EQ(err.substr(err.size() - run.end.size()), run.end);
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Pipelines, LeavingServerTest,
                         testing::Combine(testing::Values("DEL", "UNLINK", "HSET", "RPUSH"),
                                          testing::Bool()),
                         [](const testing::TestParamInfo<Case>& parameter) {
                           return std::get<0>(parameter.param) +
                                  (std::get<1>(parameter.param) ? "Long" : "Short");
                         });

// Each departure is made over one transport, in turn; with OSTRAFEL_TEST_SEEDS at 10 or more, over
// both.
TEST_P(LeavingServerTest, NeverGetsASuccess) {
  const LongRun run = MakeLongRun();
  const std::vector<Transport> transports = Transports();
  std::size_t turn = 0;
  for (const std::size_t read : std::vector<std::size_t>{0, 1, 500}) {
    std::vector<std::string> all_last_words = {""};
    if (read > 0) {
      const std::string others = Repeated(":1\r\n", read - 1);
      all_last_words.insert(all_last_words.end(), {":1\r\n" + others, "-ERR no\r\n" + others});
    }
    // Who has sent all that the socket takes cannot know that these are no answers.
    if (is_above_buffers()) all_last_words.push_back(Repeated(":1\r\n", 5000));
    for (const std::string& last_words : all_last_words) {
      SCOPED_TRACE("reads " + std::to_string(read) + ", says " + last_words.substr(0, 50));
      ++turn;
      for (std::size_t i = 0; i < transports.size(); ++i) {
        if (TestFactor() < 10 && i != turn % transports.size()) continue;
        SCOPED_TRACE(transports[i] == Transport::kUnix ? "Unix socket" : "TCP");
        Check(run, transports[i], {command(), read, last_words});
      }
    }
  }
}

}  // namespace
