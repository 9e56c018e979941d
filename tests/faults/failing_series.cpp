// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "faults/failing_series.h"

#include <algorithm>
#include <array>
#include <sstream>

#include "support/program.h"
#include "support/test_factor.h"

namespace {

using namespace std::chrono_literals;

constexpr int kAborted = 128 + 6;
constexpr const char* kPassword = "open sesame";
constexpr const char* kUri = "/redfish-of-a-machine";  // too long for a text without memory

struct TreeFile {
  const char* name;
  const char* content;
};

constexpr std::array<TreeFile, 4> kFiles = {{
    {"index.json",
     "\xEF\xBB\xBF"
     R"({
       "@odata.id": "/redfish-of-a-machine", "Name": "Root \"quoted\"", "Small": -7,
       "Large": 3000000000, "Real": 1.5, "On": true, "Off": false, "None": null,
       "&&ETag": "W/\"1\"", "&&Privileges": ["Login", "ConfigureManager"],
       "Chassis": {"@odata.id": "/redfish-of-a-machine/Chassis"}, "Was": {"Object": "now"},
       "Turned": 1})"},
    {"Chassis/index.json", R"({
       "Members": [{"@odata.id": "/redfish-of-a-machine/Chassis/One"}, {"Inline": {"Deep": [1]}},
                   [1, [2, "three"], {}], 4, null],
       "Sensors": {"@odata.id": "/redfish-of-a-machine/Chassis/Sensors", "Count": 2},
       "EmptyObject": {}, "EmptyArray": [], "Was": "an object", "Link": "no more"})"},
    {"Chassis/One/index.json", R"({"&&File": "redfish/one.json", "Dropped": true})"},
    {"Metadata/index.json", R"({"&&File": "metadata.xml", "Name": "Metadata"})"},
}};
constexpr unsigned kAllFiles = (1U << kFiles.size()) - 1;

// The tree that was there before, at the same keys.
constexpr std::array<TreeFile, 3> kOldFiles = {{
    {"index.json", R"({
       "Name": {"Was": "an object"}, "Chassis": {"Was": "inline", "With": {"Depth": 1}},
       "Was": "a text", "Turned": {"@odata.id": "/elsewhere"}, "Kept": "in an update"})"},
    {"Chassis/index.json", R"({
       "Members": ["plain", "values"], "Sensors": [{"Was": ["a list"]}],
       "EmptyObject": {"Not": "empty"}, "EmptyArray": [{"Not": "empty"}],
       "Was": {"a": {"deep": {"object": 1}}}, "Link": {"@odata.id": "/elsewhere"}})"},
    {"Chassis/One/index.json", R"({"A": [1, 2], "B": {"Was": "an object"}})"},
}};

// How the lines of standard error begin.
constexpr std::array<const char*, 19> kMessages = {
    ">>> Error occurs when processing &&File in ",
    ">>> Error occurs while parsing file ",
    ">>> Fail to write rest of data into redis",
    "Error occurs while reading files",
    "Fail to remove resource tree",
    "Failed to check path ",
    "Failed to connect to Redis",
    "Failed to clear properties.",
    "Failed to get reply",
    "Failed to update properties.",
    "File not found.",
    "Input path should be a file or directory",
    "Some errors occur while ",
    "The content of ",
    "The data in database would be incorrect",
    "Unqualified JSON file - ",
    "error: Failed to read file.",
    "error: on line ",
    "fopen: ",
};

// Where the libraries are known to end the process for want of memory.
struct LibraryCrash {
  const char* module;
  const char* function;
};
constexpr std::array<LibraryCrash, 2> kLibraryCrashes = {{
    {"libhiredis.so.0.14", "redisBufferWrite"},         // uses an output buffer that it did not get
    {"libhiredis.so.0.14", "redisContextConnectUnix"},  // aborts when it cannot copy the path
}};

bool IsKnownCrash(const FailingRun& run) {
  return std::any_of(kLibraryCrashes.begin(), kLibraryCrashes.end(), [&](const auto& crash) {
    return run.crash_module == crash.module && run.crash_function == crash.function;
  });
}

// What the C++ library says of an exception that nobody takes. It needs memory to write the type
// as people do.
bool SaysBadAllocation(const std::string& err) {
  const std::string start = "terminate called after throwing an instance of '";
  const std::string end = "'\n  what():  std::bad_alloc\n";
  for (const char* type : {"std::bad_alloc", "St9bad_alloc"}) {
    const std::string text = start + type + end;
    if (err.size() >= text.size() && err.compare(err.size() - text.size(), text.size(), text) == 0)
      return true;
  }
  return false;
}

bool TestsEverything() { return TestFactor() >= 10; }

}  // namespace

void ExpectDocumentedMessages(const std::string& err) {
  std::istringstream lines(err);
  for (std::string line; std::getline(lines, line);) {
    const bool is_known = std::any_of(kMessages.begin(), kMessages.end(),
                                      [&](const char* start) { return line.rfind(start, 0) == 0; });
    EXPECT_TRUE(is_known) << "no message of the program: " << line;
  }
}

FailingSeries::FailingSeries() : path(tree.path()), uri(kUri) {
  publishes_socket = false;
  RuntimeFiles files;
  files.unixsocket = ServerSocket();
  files.requirepass = kPassword;
  Publish(files);
  (void)store.Run(model::Command{"CONFIG", "SET", "requirepass", kPassword});

  Include("redfish/one.json", R"({"A": {"x": [1, {"y": 2}]}, "B": "included", "&&File": 3})");
  Include("metadata.xml", "<x/>");
  const TempDirectory old_tree;
  for (const TreeFile& file : kOldFiles) (void)old_tree.Write(file.name, file.content);
  WriteTree(tree, kAllFiles);
  (void)RunProgram(ProgramCommand({"create", old_tree.path(), kUri}));
  (void)store.Run("HSET | /neighbour | Name | kept");
  old_store_ = store.Contents();
  old_store = model::Dump(old_store_);
}

FailingSeries::~FailingSeries() { (void)store.Run("CONFIG | SET | requirepass | "); }

void FailingSeries::WriteTree(const TempDirectory& directory, unsigned files) const {
  for (std::size_t i = 0; i < kFiles.size(); ++i) {
    if ((files >> i & 1U) != 0) (void)directory.Write(kFiles[i].name, kFiles[i].content);
  }
  (void)directory.Write("NoResource/notes.txt", "nothing to load");
}

std::vector<std::string> FailingSeries::Arguments(const std::string& of_action) const {
  return {of_action, path, uri};
}

void FailingSeries::RestoreStore() { store.Fill(old_store_); }

std::set<std::string> FailingSeries::StoresOfSomeFiles(const std::string& of_action) {
  std::set<std::string> stores;
  for (unsigned files = 0; files <= kAllFiles; ++files) {
    const TempDirectory some;
    WriteTree(some, files);
    RestoreStore();
    EXPECT_EQ(RunProgram(ProgramCommand({of_action, some.path(), uri})).status, 0);
    stores.insert(store.Dump());
  }
  return stores;
}

void FailingSeries::FailEveryCall(const std::string& call, const Exception& is_excepted,
                                  unsigned long sample) {
  for (const char* each_action : {"create", "update"}) {
    action = each_action;
    for (const bool is_onwards : {false, true}) {
      FailEachOf(call, sample, is_onwards, 0, is_excepted);
    }
  }
  RecordProperty("runs", runs_);
}

void FailingSeries::FailEveryCallWith(int error, const std::string& call,
                                      const Exception& is_excepted) {
  for (const char* each_action : {"create", "update"}) {
    action = each_action;
    FailEachOf(call, 25, false, error, is_excepted);
  }
  RecordProperty("runs", runs_);
}

void FailingSeries::FailEachOf(const std::string& call, unsigned long sample, bool is_onwards,
                               int error, const Exception& is_excepted) {
  RestoreStore();
  clean_run_ = RunDirectly({}, Arguments(action));
  clean_store = store.Dump();
  ASSERT_EQ(clean_run_.finished.status, 0) << Describe(clean_run_);
  ASSERT_EQ(clean_run_.finished.err, "");
  ASSERT_EQ(clean_run_.finished.out, kSuccessLine);
#ifndef OSTRAFEL_WITHOUT_FAILING_ALLOCATION
  ASSERT_EQ(clean_run_.counts.count("live"), 1U);
#endif
  const unsigned long count = clean_run_.counts[call];
  ASSERT_GT(count, 0U) << "the run makes no call of " << call;
  const unsigned long chosen = TestsEverything() ? count : std::min(count, sample);
  for (unsigned long i = 0; i < chosen; ++i) {
    const FailingCalls failing = {call, i * count / chosen, is_onwards, error};
    RestoreStore();
    const FailingRun run = RunDirectly(failing, Arguments(action));
    SCOPED_TRACE(action + ", failing: " + Describe(failing) + ": " + Describe(run));
    Judge(failing, run, is_excepted);
    ++runs_;
  }
}

void FailingSeries::Judge(const FailingCalls& failing, const FailingRun& run,
                          const Exception& is_excepted) {
  // A hang is what this looks for, not a machine that is busy with other things.
  EXPECT_LT(run.elapsed, 30s);
  const Finished& finished = run.finished;
  if (const auto live = run.counts.find("live"); live != run.counts.end()) {
    EXPECT_LE(live->second, clean_run_.counts["live"]) << "memory that was never freed";
  }
  if (is_excepted && is_excepted(failing, run)) return;
  if (finished.status == 0) {
    EXPECT_EQ(finished.out, kSuccessLine);
    EXPECT_EQ(store.Dump(), clean_store);
    ExpectDocumentedMessages(finished.err);
    return;
  }
  EXPECT_EQ(finished.out, "");
  if (failing.call == "allocation") {
    if (finished.status == kAborted && SaysBadAllocation(finished.err)) return;
    if (!run.crash_module.empty()) {
      EXPECT_TRUE(IsKnownCrash(run));
      return;
    }
  }
  EXPECT_EQ(finished.status, 255);
  EXPECT_NE(finished.err, "");
  ExpectDocumentedMessages(finished.err);
}
