// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What files hold, and the key that a root object chooses.
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <chrono>
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

// Standard error of the program in the next test: a pipe that is full.
int full_pipe = -1;

TEST_F(Documents, AFailedWriterIsReportedAfterTheConnectionIsClosed) {
  const std::string file = tree.Write("a.json", R"({"Bad": {"@odata.id": 1}})");
  std::array<int, 2> ends = {};
  ASSERT_EQ(pipe2(ends.data(), O_NONBLOCK), 0);
  full_pipe = ends[1];
  while (write(full_pipe, "x", 1) == 1) continue;
  ASSERT_EQ(fcntl(full_pipe, F_SETFL, 0), 0);  // the program waits for room to write
  RunOptions options;
  options.in_child = [] { (void)dup2(full_pipe, STDERR_FILENO); };
  bool was_closed_before = false;
  std::thread reader;
  plan = [&](Recorder& recorder) {
    reader = std::thread([&] {
      const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
      while (!was_closed_before && std::chrono::steady_clock::now() < deadline) {
        was_closed_before = recorder.ClosedByClient() == 1;
      }
      (void)close(full_pipe);
      std::array<char, 4096> buffer = {};
      pollfd wait = {ends[0], POLLIN, 0};
      while (poll(&wait, 1, 20000) > 0 && read(ends[0], buffer.data(), buffer.size()) > 0) continue;
    });
  };
  EXPECT_EQ(Ostrafel({"create", file, "/r"}, options).status, 255);
  reader.join();
  (void)close(ends[0]);
  EXPECT_TRUE(was_closed_before);
}

}  // namespace
