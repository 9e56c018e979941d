// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Folders, files and links that a tree of static data may hold and should not.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "system/system_fixture.h"

namespace {

const std::vector<std::string> kHostileNames = {
    " ",
    " a b ",
    "%s%n%d%b",
    "*",
    "?[a-z]",
    "\\",
    "'\"`$(reboot)`",
    "-rf",
    "line\nend\r",
    "\x01\x1b[2J\x7f",
    "\xff\xfe\x80",
    "&&",
    "&&Object a",
    "...",
    ".hidden",
    "index.jsonx",
    "|;&<>#~",
    std::string(255, 'n'),
};

class HostileTree : public SystemTest {
 protected:
  // Runs the action on a folder and expects success with these lines on standard error.
  //
  // When somebody changes a folder or mounts something meanwhile, the kernel may go a way again and
  // count the links of it twice, so that its limit comes early. Such a run is made again.
  void LoadWithMessages(const char* action, const std::string& folder, const std::string& err) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    Finished run;
    do {
      run = Ostrafel({action, folder, "/r"});
    } while (run.err != err && std::chrono::steady_clock::now() < deadline);
    EXPECT_EQ(run.out, kSuccessLine);
    EXPECT_EQ(run.err, err);
    EXPECT_EQ(run.status, 0);
  }

  void MakeFifo(const std::string& name) { ASSERT_EQ(mkfifo(tree.path(name).c_str(), 0600), 0); }
};

TEST_F(HostileTree, AnyNameOfAFolderIsPartOfTheKey) {
  model::Store expected;
  for (const std::string& name : kHostileNames) {
    tree.Write(name + "/index.json", R"({"A": {"x": 1}})");
    tree.Write(name + "/" + name + "/index.json", R"({"B": 2})");
    const std::string key = "/r/" + name;
    expected[key].value = model::Hash{{"&&Object A &&" + key + "/A", ""}};
    expected["&&" + key + "/A"].value = model::Hash{{"x", "1"}};
    expected[key + "/" + name].value = model::Hash{{"B", "2"}};
  }
  for (const char* action : {"create", "update"}) {
    Load({action, tree.path(), "/r"});
    EXPECT_EQ(store.Dump(), model::Dump(expected)) << action;
  }
}

TEST_F(HostileTree, AnyNameOfAFileIsTakenAsItIs) {
  for (const std::string& name : kHostileNames) {
    if (name.size() > 250) continue;  // no room for the extension
    const TempDirectory other;
    other.Write(name + ".json", R"({"A": 1})");
    other.Write("index.json", R"({"A": 2})");
    other.Write("ab.json", R"({"A": 3})");
    (void)store.Run("FLUSHALL");
    Load({"update", other.path(), "/r", name + ".json"});
    EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n") << name;
  }
}

TEST_F(HostileTree, AnyPathIsShownAsItIs) {
  for (const std::string& name : kHostileNames) {
    const TempDirectory other;
    const std::string bad = other.Write(name + "/index.json", "[]\n");
    ExpectFailure({"create", other.path(), "/r"},
                  "The content of " + bad + " is not a valid JSON data.\n");
    const std::string missing = other.path(name + "/missing");
    ExpectFailure({"create", missing, "/r"}, "Failed to check path " + missing +
                                                 ".\nInput path should be a file or directory\n");
  }
}

// The links and the folder lead to no folder that others change.
TEST_F(HostileTree, ALinkToItsOwnFolderIsFollowedFortyTimes) {
  tree.Write("top/index.json", R"({"A": 1})");
  std::filesystem::create_directory_symlink(".", tree.path("top/loop"));
  const std::string top = tree.path("top");
  // The system follows no more than 40 links on the way to one file.
  model::Store expected;
  std::string below;
  for (int links = 0; links <= 40; ++links) {
    expected["/r" + below].value = model::Hash{{"A", "1"}};
    below += "/loop";
  }
  LoadWithMessages("create", top, "Failed to check path " + top + below + ".\n");
  EXPECT_EQ(store.Dump(), model::Dump(expected));
  LoadWithMessages("update", top, "Failed to check path " + top + below + ".\n");
  EXPECT_EQ(store.Dump(), model::Dump(expected));
}

// STATUS 0 DOES NOT MEAN: The file is a FIFO, a socket or a device
TEST_F(HostileTree, OnlyRegularFilesAreOpened) {
  tree.Write("a/index.json", R"({"A": 1})");
  MakeFifo("index.json");
  MakeFifo("fifo");
  tree.MakeFolder("zero");
  std::filesystem::create_symlink("/dev/zero", tree.path("zero/index.json"));
  std::filesystem::create_symlink(tree.path("fifo"), tree.path("a/fifo.json"));
  tree.MakeFolder("socket");
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  const std::string path = tree.path("socket/index.json");
  ASSERT_LT(path.size(), sizeof address.sun_path);
  std::memcpy(address.sun_path, path.c_str(), path.size());
  const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  for (const char* action : {"create", "update"}) {
    Load({action, tree.path(), "/r"});
    EXPECT_EQ(store.Dump(), "hash | /r/a | A | 1\n");
  }
  std::string shown = Shown("find -L TREE -name index.json ! -type f ! -type d");
  for (const char* name : {"index.json", "zero/index.json", "socket/index.json"}) {
    const std::string line = tree.path(name) + "\n";
    const std::size_t found = shown.find(line);
    ASSERT_NE(found, std::string::npos) << line;
    shown.erase(found, line.size());
  }
  EXPECT_EQ(shown, "");
  for (const char* name : {"index.json", "zero/index.json", "socket/index.json"}) {
    ExpectFailure({"update", tree.path(name), "/r"}, "Input path should be a file or directory\n");
  }
  (void)close(server);
}

}  // namespace
