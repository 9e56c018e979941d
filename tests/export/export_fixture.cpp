// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/export_fixture.h"

#include <filesystem>
#include <sstream>
#include <utility>

#include "memory/server_copy.h"

namespace {

std::string RecorderSocket() { return RuntimeDirectory() + "/recorder.sock"; }

std::vector<std::string> ExportCommand(const std::string& socket,
                                       std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "--socket=" + socket);
  return CommandOf(OSTRAFEL_EXPORT_PROGRAM, arguments);
}

}  // namespace

Listing ListingOf(const std::string& folder, const std::string& left_out) {
  namespace fs = std::filesystem;
  Listing listing;
  if (!fs::exists(folder)) return listing;
  const fs::recursive_directory_iterator end;
  for (fs::recursive_directory_iterator place(folder); place != end; ++place) {
    const fs::directory_entry& entry = *place;
    std::string path = entry.path().string().substr(folder.size() + 1);
    if (path == left_out) {
      place.disable_recursion_pending();
      continue;
    }
    if (path.find('/') == std::string::npos) path.insert(0, "./");
    std::string& text = listing[path];
    if (entry.is_symlink()) {
      text = "link -> " + fs::read_symlink(entry.path()).string();
    } else if (entry.is_directory()) {
      text = "folder";
    } else {
      text = "file: " + ReadFile(entry.path().string());
    }
  }
  return listing;
}

std::string Difference(const Listing& was, const Listing& is) {
  std::string text;
  for (const auto& [path, content] : was) {
    const auto found = is.find(path);
    if (found == is.end()) {
      text += "- " + path + "\n";
    } else if (found->second != content) {
      text += "! " + path + "\n" + content + "\n" + found->second + "\n";
    }
  }
  for (const auto& [path, content] : is) {
    if (was.count(path) == 0) text += "+ " + path + "\n";
  }
  return text;
}

ExportTest::ExportTest() {
  RuntimeFiles files;
  files.unixsocket = ServerSocket();
  Publish(files);
  publishes_socket = false;
}

Finished ExportTest::Export(const std::vector<std::string>& arguments, const RunOptions& options) {
  return RunProgram(ExportCommand(ServerSocket(), arguments), options);
}

Finished ExportTest::RecordedExport(const std::vector<std::string>& arguments,
                                    const RunOptions& options) {
  Recorder recorder(RecorderSocket(), ServerSocket());
  if (plan) plan(recorder);
  RunOptions watched = options;
  watched.on_start = [&](int process_id) {
    recorded_process = process_id;
    recorder.Watch(process_id);
  };
  Finished finished = RunProgram(ExportCommand(RecorderSocket(), arguments), watched);
  recording = recorder.Finish();
  EXPECT_LE(recording.connections, 1);
  return finished;
}

void ExportTest::ExpectWritten(const Finished& finished, const std::string& resources,
                               const std::string& folder) {
  EXPECT_EQ(finished.out, resources + " written to " + folder + "\n");
  EXPECT_EQ(finished.err, "");
  EXPECT_EQ(finished.status, 0);
}

bool ExportTest::ComesBack(const Finished& finished) {
  if (finished.status != 1) return finished.status == 0 && finished.err.empty();
  const std::string bound = ": may have been a number of more than 32 bits";
  std::istringstream lines(finished.err);
  std::string line;
  while (std::getline(lines, line)) {
    const bool is_bound = line.size() > bound.size() &&
                          line.compare(line.size() - bound.size(), bound.size(), bound) == 0;
    if (!is_bound && line.rfind("ostrafel-export: not all comes back: ", 0) != 0) return false;
  }
  return true;
}

void ExportTest::Create(const std::string& path, const std::string& uri) {
  (void)store.Run("FLUSHALL");
  const Finished finished = RunProgram(ProgramCommand({"create", path, uri}));
  ASSERT_EQ(finished.err, "");
  ASSERT_EQ(finished.status, 0);
}

Listing ExportTest::ExpectRoundTrip(const std::string& uri) {
  const TempDirectory folder;
  const std::string before = StoreText();
  const Finished first = Export({"--quiet", uri, folder.path("1")});
  EXPECT_TRUE(ComesBack(first)) << first.err;
  Create(folder.path("1"), uri);
  EXPECT_EQ(ostrafel::Difference(before, StoreText()), "");
  const Finished second = Export({"--quiet", uri, folder.path("2")});
  EXPECT_EQ(second.err, first.err);
  EXPECT_EQ(second.status, first.status);
  Listing tree_of_first = ListingOf(folder.path("1"));
  EXPECT_EQ(Difference(tree_of_first, ListingOf(folder.path("2"))), "");
  return tree_of_first;
}

void ExportTest::StoreManyParts(const std::string& key) {
  model::Command resource = {"HSET", key};
  for (int i = 0; i < 10500; ++i) {
    const std::string name = "m" + std::to_string(i);
    const std::string part = "&&" + key + "/" + name;
    resource.insert(resource.end(), {"&&Object " + name + " " + part, ""});
    (void)store.Run(model::Command{"HSET", part, "x", "1"});
  }
  (void)store.Run(resource);
}

std::string ExportTest::StoreText() { return ostrafel::Dump(ostrafel::CopyOf(store.Contents())); }
