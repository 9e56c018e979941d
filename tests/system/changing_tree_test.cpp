// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Trees that somebody else changes while they are loaded.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <regex>
#include <string>
#include <system_error>
#include <thread>

#include "system/input_size.h"
#include "system/system_fixture.h"

namespace {

// Enough runs for a change to fall into every part of one; a slow program meets more of them in
// each.
int Runs() { return std::max(Scaled(200), 30); }

// Calls a function over and over in a thread of its own.
class Meanwhile {
 public:
  explicit Meanwhile(const std::function<void()>& function)
      : thread_([this, function] {
          while (!is_ending_) {
            function();
            ++rounds_;
          }
        }) {}
  ~Meanwhile() { (void)End(); }
  Meanwhile(const Meanwhile&) = delete;
  Meanwhile& operator=(const Meanwhile&) = delete;

  // Returns how often the function was called.
  int End() {
    is_ending_ = true;
    if (thread_.joinable()) thread_.join();
    return rounds_;
  }

 private:
  std::atomic<bool> is_ending_{false};
  std::atomic<int> rounds_{0};
  std::thread thread_;
};

class ChangingTree : public SystemTest {
 protected:
  // Loads the tree many times. Each run must succeed with all that is in `stable` stored, or fail
  // with what a failure may print.
  void LoadManyTimes(const model::Store& stable) {
    const std::string path = "[^\n]*";
    const std::string passed_over = "Failed to check path " + path + "\\.\n";
    const std::string parser =
        "(error: Failed to read file\\.\n)?(error: on line [0-9]+: [^\n]*\n)?";
    const std::regex expected_on_success("(" + passed_over + "|error: Failed to read file\\.\n)*");
    const std::regex expected_on_failure(
        "(" + passed_over +
        "|error: Failed to read file\\.\n)*(Error occurs while reading files\n|" + parser +
        "The content of " + path + " is not a valid JSON data\\.\n)");
    int successes = 0;
    for (int run = 0; run < Runs(); ++run) {
      const char* action = run % 2 == 0 ? "create" : "update";
      const Finished finished = Ostrafel({action, tree.path(), "/r"});
      if (finished.status == 0) {
        ++successes;
        EXPECT_EQ(finished.out, kSuccessLine);
        EXPECT_TRUE(std::regex_match(finished.err, expected_on_success)) << finished.err;
        const model::Store contents = store.Contents();
        for (const auto& [key, value] : stable) {
          const auto found = contents.find(key);
          EXPECT_TRUE(found != contents.end() && found->second == value) << run << " " << key;
        }
      } else {
        EXPECT_EQ(finished.status, 255);
        EXPECT_EQ(finished.out, "");
        EXPECT_TRUE(std::regex_match(finished.err, expected_on_failure)) << finished.err;
      }
      if (HasFailure()) break;
    }
    EXPECT_GT(successes, 0);
  }

  // Writes files that nobody changes, and returns what they are stored as.
  model::Store WriteStableFiles() {
    model::Store stable;
    for (int i = 0; i < 20; ++i) {
      const std::string number = std::to_string(i);
      tree.Write("stable" + number + "/index.json", R"({"A": )" + number + R"(, "L": ["x"]})");
      const std::string key = "/r/stable" + number;
      stable[key].value = model::Hash{{"A", number}, {"&&Array L &&" + key + "/L", ""}};
      stable["&&" + key + "/L"].value = model::List{"\"x\""};
    }
    return stable;
  }
};

TEST_F(ChangingTree, FoldersComeAndGoDuringTheWalk) {
  const model::Store stable = WriteStableFiles();
  Meanwhile changes([this] {
    for (int i = 0; i < 10; ++i) {
      const std::string name = "new" + std::to_string(i);
      (void)tree.Write(name + "/a/index.json", R"({"B": {"x": 1}})");
      (void)tree.Write(name + "/index.json", R"({"B": {"x": 1}})");
    }
    for (int i = 0; i < 10; ++i) {
      std::error_code ignored;
      std::filesystem::remove_all(tree.path("new" + std::to_string(i)), ignored);
    }
  });
  LoadManyTimes(stable);
  EXPECT_GT(changes.End(), 0);
  Load({"create", tree.path(), "/r"});
}

TEST_F(ChangingTree, FilesAreReplacedByFoldersAndLinksDuringTheWalk) {
  const model::Store stable = WriteStableFiles();
  const std::string changing = tree.path("changing/index.json");
  int round = 0;
  Meanwhile changes([&] {
    std::error_code ignored;
    std::filesystem::remove_all(changing, ignored);
    if (round % 3 == 0) (void)tree.Write("changing/index.json", R"({"B": 1})");
    if (round % 3 == 1) (void)tree.Write("changing/index.json/index.json", R"({"B": 1})");
    if (round % 3 == 2) std::filesystem::create_symlink("../stable0/index.json", changing, ignored);
    ++round;
  });
  LoadManyTimes(stable);
  EXPECT_GT(changes.End(), 0);
  Load({"create", tree.path(), "/r"});
}

TEST_F(ChangingTree, AReplacedFileIsLoadedWholeOrNotAtAll) {
  const std::string filler(static_cast<std::size_t>(Scaled(1000000)), 'x');
  const std::string file = tree.path("index.json");
  const auto document = [&](const std::string& version) {
    return "{\"first\": " + version + ", \"filler\": \"" + filler + "\", \"last\": " + version +
           "}";
  };
  WriteFile(file, document("1"));
  const TempDirectory workshop;  // out of the walk's way
  const std::string fresh = workshop.path("fresh");
  int round = 0;
  // A new version takes the place of the old one, and then some of it is cut off.
  Meanwhile changes([&] {
    WriteFile(fresh, document(std::to_string(++round % 7)));
    std::filesystem::rename(fresh, file);
    std::error_code ignored;
    std::filesystem::resize_file(file, filler.size() / 2, ignored);
  });
  const std::string refusal = "error: on line 1: premature end of input\nThe content of " + file +
                              " is not a valid JSON data.\n";
  int refusals = 0;
  for (int run = 0; run < Runs() / 2; ++run) {
    const Finished finished = Ostrafel({"update", tree.path(), "/r"});
    if (finished.status == 0) {
      EXPECT_EQ(finished.out, kSuccessLine);
      EXPECT_EQ(finished.err, "");
      EXPECT_EQ(store.Run("HGET | /r | first").text, store.Run("HGET | /r | last").text);
      EXPECT_EQ(store.Run("HSTRLEN | /r | filler").integer,
                static_cast<long long>(filler.size() + 2));
    } else {
      ++refusals;
      EXPECT_EQ(finished.status, 255);
      EXPECT_EQ(finished.out, "");
      EXPECT_EQ(finished.err, refusal);
    }
    if (HasFailure()) break;
  }
  EXPECT_GT(changes.End(), 1);
  EXPECT_GT(refusals, 0) << "no run met a file that was cut off";
  ExpectFailure({"update", tree.path(), "/r"}, refusal);
  WriteFile(file, document("8"));
  Load({"update", tree.path(), "/r"});
  EXPECT_EQ(store.Run("HGET | /r | last").text, "8");
}

}  // namespace
