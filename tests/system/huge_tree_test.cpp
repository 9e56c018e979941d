// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Trees of many folders, and of folders so deep that their paths have no room left.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <string>
#include <utility>

#include "system/input_size.h"
#include "system/system_fixture.h"

namespace {

constexpr std::size_t kLongestPath = PATH_MAX - 1;  // the closing NUL counts

class HugeTree : public SystemTest {
 protected:
  struct DeepFolder {
    std::string path;
    int descriptor = -1;
  };

  // Makes folders below each other until the innermost one's path has this length, however long.
  DeepFolder MakeDeepFolder(std::size_t length) {
    DeepFolder folder = {tree.path(), open(tree.path().c_str(), O_DIRECTORY | O_CLOEXEC)};
    while (folder.path.size() < length) {
      std::size_t size = std::min<std::size_t>(200, length - folder.path.size() - 1);
      // The last one must have a name, too.
      if (folder.path.size() + 1 + size + 1 == length) --size;
      Enter(&folder, std::string(size, 'd'));
    }
    EXPECT_EQ(folder.path.size(), length);
    return folder;
  }

  static void Enter(DeepFolder* folder, const std::string& name) {
    EXPECT_EQ(mkdirat(folder->descriptor, name.c_str(), 0700), 0) << name.size();
    const int inner = openat(folder->descriptor, name.c_str(), O_DIRECTORY | O_CLOEXEC);
    EXPECT_GE(inner, 0);
    (void)close(std::exchange(folder->descriptor, inner));
    folder->path += "/" + name;
  }

  static void WriteInto(const DeepFolder& folder, const std::string& content) {
    const int file =
        openat(folder.descriptor, "index.json", O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    EXPECT_EQ(write(file, content.data(), content.size()), static_cast<ssize_t>(content.size()));
    (void)close(file);
  }

  std::string KeyOf(const DeepFolder& folder) const {
    return "/r" + folder.path.substr(tree.path().size());
  }
};

TEST_F(HugeTree, UpToTenThousandFoldersAreLoaded) {
  model::Store expected;
  for (int i = 0; i < Scaled(10000); ++i) {
    std::string path;  // a folder for each digit
    for (const char digit : std::to_string(100000 + i).substr(1)) {
      path += "/";
      path += digit;
    }
    tree.Write(path.substr(1) + "/index.json", R"({"A": )" + std::to_string(i) + "}");
    expected["/r" + path].value = model::Hash{{"A", std::to_string(i)}};
  }
  Load({"create", tree.path(), "/r"});
  EXPECT_TRUE(store.Dump() == model::Dump(expected));
}

TEST_F(HugeTree, NineHundredNestedFoldersAreWalked) {
  // Each holds a descriptor until all below it is read; 1024 is what a process usually has.
  std::string path;
  for (int i = 0; i < 900; ++i) path += "/d";
  tree.Write(path.substr(1) + "/index.json", R"({"A": 1})");
  Load({"create", tree.path(), "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r" + path + " | A | 1\n");
}

TEST_F(HugeTree, OneFileIsFoundAmongUpToTenThousand) {
  for (int i = 0; i < Scaled(10000); ++i) {
    tree.Write("other" + std::to_string(i) + ".json", "no JSON");
  }
  tree.Write("index.json", R"({"A": 1})");
  Load({"create", tree.path(), "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

TEST_F(HugeTree, AFileWhosePathJustFitsIsLoaded) {
  const std::string file_name = "/index.json";
  const DeepFolder folder = MakeDeepFolder(kLongestPath - file_name.size());
  WriteInto(folder, R"({"A": 1, "B": {"x": 2}})");
  const std::string key = KeyOf(folder);
  const std::string dump = "hash | &&" + key + "/B | x | 2\nhash | " + key + " | &&Object B &&" +
                           key + "/B | \nhash | " + key + " | A | 1\n";
  for (const char* action : {"create", "update"}) {
    Load({action, tree.path(), "/r"});
    EXPECT_EQ(store.Dump(), dump);
    Load({action, folder.path + file_name, key});
    EXPECT_EQ(store.Dump(), dump);
  }
  (void)close(folder.descriptor);
}

// STATUS 0 DOES NOT MEAN: A path is longer than 4095 bytes
TEST_F(HugeTree, AFileWhosePathIsOneByteTooLongIsReportedAndPassedOver) {
  tree.Write("index.json", R"({"A": 1})");
  const std::string file_name = "/index.json";
  const DeepFolder folder = MakeDeepFolder(kLongestPath - file_name.size() + 1);
  WriteInto(folder, R"({"A": 2})");
  (void)close(folder.descriptor);
  const std::string message = "Failed to check path " + folder.path + file_name + ".\n";
  const Finished run = Ostrafel({"create", tree.path(), "/r"});
  EXPECT_EQ(run.out, kSuccessLine);
  EXPECT_EQ(run.err, message);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
  EXPECT_EQ(Shown("find -L TREE | LC_ALL=C awk 'length > 4095'"), folder.path + file_name + "\n");
  ExpectFailure({"update", folder.path + file_name, "/r"},
                message + "Input path should be a file or directory\n");
}

TEST_F(HugeTree, FoldersWhosePathsAreTooLongAreReportedAndPassedOver) {
  tree.Write("index.json", R"({"A": 1})");
  // This one can still be read, but nothing in it can be named, not even itself.
  DeepFolder folder = MakeDeepFolder(kLongestPath);
  const std::string last = folder.path;
  Enter(&folder, "below");
  WriteInto(folder, R"({"A": 2})");
  for (int i = 0; i < 10; ++i) Enter(&folder, std::string(200, 'e'));
  WriteInto(folder, R"({"A": 3})");
  (void)close(folder.descriptor);
  const Finished run = Ostrafel({"create", tree.path(), "/r"});
  EXPECT_EQ(run.out, kSuccessLine);
  EXPECT_EQ(run.status, 0);
  std::string err;  // in the order of the listing
  for (const auto& entry : std::filesystem::directory_iterator(last)) {
    EXPECT_EQ(entry.path().filename(), "below");
  }
  for (const char* name : {"/.", "/..", "/below"}) {
    const std::string line = "Failed to check path " + last + name + ".\n";
    const std::size_t found = run.err.find(line);
    EXPECT_NE(found, std::string::npos) << name;
    err += line;
  }
  EXPECT_EQ(run.err.size(), err.size()) << run.err;
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

}  // namespace
