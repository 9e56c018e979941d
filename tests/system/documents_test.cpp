// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What files hold, and the key that a root object chooses.
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "system/system_fixture.h"

namespace {

class Documents : public SystemTest {
 protected:
  static std::string InvalidContent(const std::string& path) {
    return "The content of " + path + " is not a valid JSON data.\n";
  }

  // The beginning of an object of this many members and more.
  static std::string ManyMembers(int count) {
    std::string text = "{";
    for (int i = 0; i < count; ++i) text += "\"m" + std::to_string(i) + "\": 1, ";
    return text;
  }
};

TEST_F(Documents, AnEmptyObjectOfTwoBytesIsReportedAndLoaded) {
  const std::string file = tree.Write("a.json", "{}");
  const Finished run = Ostrafel({"create", file, "/r"});
  EXPECT_EQ(run.out, kSuccessLine);
  EXPECT_EQ(run.err, "error: Failed to read file.\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(store.Dump(), "");
}

// What the parser itself refuses is told in hostile_input_test.cpp.
TEST_F(Documents, WithoutAnObjectAreRefused) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "error: Failed to read file.\nerror: on line 1: '[' or '{' expected near end of file\n"},
      {"[1, 2]", ""},
      {"1234", "error: on line 1: '[' or '{' expected near '1234'\n"},
  };
  for (const auto& [document, err] : cases) {
    const std::string file = tree.Write("a.json", document);
    ExpectFailure({"update", file, "/r"}, err + InvalidContent(file));
  }
}

TEST_F(Documents, GoToTheKeyThatTheRootChooses) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"@odata.id": "/a//b/", "A": 1})",
       "hash | /a//b/ | @odata.id | \"/a//b/\"\nhash | /a//b/ | A | 1\n"},
      {R"({"@odata.id": "/a/b"})", "hash | /r | @odata.id | \"/a/b\"\n"},
      {R"({"@odata.id": 5})", "hash | /r | @odata.id | 5\n"},
      {"\xEF\xBB\xBF{\"A\": 1}", "hash | /r | A | 1\n"},
  };
  for (const auto& [document, dump] : cases) {
    (void)store.Run("FLUSHALL");
    LoadDocument("create", document);
    EXPECT_EQ(store.Dump(), dump);
  }
}

TEST_F(Documents, ARootWhoseIdIsNoStringFailsSilently) {
  for (const char* id : {"1", "null", "true", "{}", "[\"/a\"]"}) {
    const std::string file =
        tree.Write("a.json", R"({"A": 1, "@odata.id": )" + std::string(id) + "}");
    ExpectFailure({"update", file, "/r"}, "");
    EXPECT_EQ(Sent(), "") << id;
  }
}

TEST_F(Documents, ALaterInvalidFileLeavesWhatWasSentAndDropsWhatWaits) {
  tree.MakeFolder("a");
  tree.MakeFolder("b");
  // The files are loaded in the order of the listing.
  std::vector<std::string> folders;
  for (const auto& entry : std::filesystem::directory_iterator(tree.path())) {
    folders.push_back(entry.path().filename().string());
  }
  ASSERT_EQ(folders.size(), 2U);
  tree.Write(folders[0] + "/index.json", ManyMembers(2001) + R"("last": 1})");
  const std::string bad = tree.Write(folders[1] + "/index.json", "{");
  ExpectFailure({"create", tree.path(), "/r"},
                "error: Failed to read file.\n"
                "error: on line 1: string or '}' expected near end of file\n" +
                    InvalidContent(bad));
  EXPECT_EQ(store.Run("HLEN | /r/" + folders[0]).integer, 2000);
}

TEST_F(Documents, AFailedMemberLeavesWhatWasSentAndDropsWhatWaits) {
  const std::string file = tree.Write("a.json", ManyMembers(2001) + R"("Bad": {"@odata.id": 1}})");
  ExpectFailure({"create", file, "/r"}, ">>> Error occurs while parsing file " + file + "\n");
  EXPECT_EQ(store.Run("HLEN | /r").integer, 2000);
}

// Both ends of something that takes no more until it is read. A line waits for a terminal at once,
// for a pipe only on standard error.
struct FullOutput {
  int reader;
  int writer;
};

FullOutput Fill(int reader, int writer) {
  EXPECT_EQ(fcntl(writer, F_SETFL, O_NONBLOCK), 0);
  while (write(writer, "x", 1) == 1) continue;
  EXPECT_EQ(fcntl(writer, F_SETFL, 0), 0);  // the program waits for room to write
  return {reader, writer};
}

FullOutput FullPipe() {
  std::array<int, 2> ends = {};
  EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  return Fill(ends[0], ends[1]);
}

FullOutput FullTerminal() {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  EXPECT_EQ(grantpt(terminal), 0);
  EXPECT_EQ(unlockpt(terminal), 0);
  return Fill(terminal, open(ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC));
}

// What the program gets in the next test, and as which descriptor.
int full_output = -1;
int replaced_descriptor = -1;

TEST_F(Documents, TheLastLineComesAfterTheConnectionIsClosed) {
  const struct {
    const char* document;
    FullOutput output;
    int descriptor;
    int status;
  } cases[] = {{R"({"Bad": {"@odata.id": 1}})", FullPipe(), STDERR_FILENO, 255},
               {R"({"A": 1})", FullTerminal(), STDOUT_FILENO, 0}};
  for (const auto& c : cases) {
    const int reader = c.output.reader;
    full_output = c.output.writer;
    replaced_descriptor = c.descriptor;
    RunOptions options;
    options.in_child = [] { (void)dup2(full_output, replaced_descriptor); };
    bool was_closed_before = false;
    std::thread drain;
    plan = [&](Recorder& recorder) {
      drain = std::thread([&] {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!was_closed_before && std::chrono::steady_clock::now() < deadline) {
          was_closed_before = recorder.ClosedByClient() == 1;
        }
        (void)close(full_output);
        std::array<char, 4096> buffer = {};
        pollfd wait = {reader, POLLIN, 0};
        while (poll(&wait, 1, 20000) > 0 && read(reader, buffer.data(), buffer.size()) > 0)
          continue;
      });
    };
    const std::string file = tree.Write("a.json", c.document);
    EXPECT_EQ(Ostrafel({"create", file, "/r"}, options).status, c.status);
    drain.join();
    (void)close(reader);
    EXPECT_TRUE(was_closed_before) << c.document;
  }
}

}  // namespace
