// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/apply_fixture.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "model/run_model.h"

namespace {

std::string RecorderSocket() { return RuntimeDirectory() + "/recorder.sock"; }

std::vector<std::string> DiffCommand(const std::string& socket,
                                     std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "--socket=" + socket);
  return CommandOf(OSTRAFEL_DIFF_PROGRAM, arguments);
}

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

bool ChangeHash(std::mt19937_64& generator, const std::string& text, model::Hash* hash) {
  auto field = std::next(hash->begin(), static_cast<long>(Random(generator, hash->size())));
  switch (Random(generator, 3)) {
    case 0:
      field->second += text + "+";
      return true;
    case 1:
      return hash->emplace(text, text).second;
    default:
      if (hash->size() == 1) return false;
      hash->erase(field);
      return true;
  }
}

bool ChangeList(std::mt19937_64& generator, const std::string& text, model::List* list) {
  const auto element = list->begin() + static_cast<long>(Random(generator, list->size()));
  switch (Random(generator, 5)) {
    case 0:
      *element += text + "+";
      return true;
    case 1:
      list->push_back(text);
      return true;
    case 2:
      list->insert(element, *element);
      return true;
    case 3:
      list->insert(element, text);
      return true;
    default:
      if (list->size() == 1) return false;
      list->erase(element);
      return true;
  }
}

void ChangeType(std::size_t kind, const std::string& text, model::StoredValue* stored) {
  if (kind % 3 == stored->value.index()) ++kind;
  if (kind % 3 == 0) stored->value = model::Hash{{text, text}};
  if (kind % 3 == 1) stored->value = model::List{text, text};
  if (kind % 3 == 2) stored->value = text;
}

// What others keep beside the tree, and below its URI.
void AddForeignKeys(std::mt19937_64& generator, const std::string& uri, model::Store* store) {
  const std::vector<std::string> names = {"/elsewhere",
                                          uri + "y",
                                          "&&" + uri,
                                          "",
                                          " ",
                                          "&&/elsewhere/a",
                                          uri + "//",
                                          "&&" + uri + "//",
                                          uri + "/\xff\xfe\r\n",
                                          "&&" + uri + "/\"*?[\\",
                                          std::string("nul\0nul", 7)};
  for (const std::string& name : names) {
    if (Random(generator, 2) == 0) ChangeType(Random(generator, 3), name + "\xff", &(*store)[name]);
  }
}

}  // namespace

ApplyTest::ApplyTest() {
  RuntimeFiles files;
  files.unixsocket = ServerSocket();
  Publish(files);
  publishes_socket = false;
}

Finished ApplyTest::Diff(const std::vector<std::string>& arguments, const RunOptions& options) {
  return RunProgram(DiffCommand(ServerSocket(), arguments), options);
}

Finished ApplyTest::RecordedDiff(const std::vector<std::string>& arguments) {
  Recorder recorder(RecorderSocket(), ServerSocket());
  if (plan) plan(recorder);
  RunOptions options;
  options.on_start = [&](int process_id) { recorder.Watch(process_id); };
  Finished finished = RunProgram(DiffCommand(RecorderSocket(), arguments), options);
  recording = recorder.Finish();
  EXPECT_LE(recording.connections, 1);
  return finished;
}

model::Store ApplyTest::After(const std::string& action, const model::Store& before,
                              const std::string& path, const std::string& uri, int* status) {
  store.Fill(before);
  const Finished finished = RunProgram(ProgramCommand({action, path, uri}));
  if (status != nullptr) {
    *status = finished.status;
  } else {
    EXPECT_EQ(finished.status, 0) << finished.err;
  }
  return store.Contents();
}

void ApplyTest::ExpectNothingLeft(const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {"--apply"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const std::string before = store.Dump();
  const Finished finished = RecordedDiff(words);
  EXPECT_EQ(finished.out.rfind("equal: ", 0), 0U) << finished.out;
  EXPECT_EQ(finished.status, 0);
  EXPECT_TRUE(Writes().empty());
  EXPECT_EQ(store.Dump(), before);
}

std::size_t ApplyTest::ExecFlight() const {
  const auto found = std::find_if(
      recording.flights.begin(), recording.flights.end(), [](const model::Flight& flight) {
        return !flight.commands.empty() && flight.commands.front().front() == "EXEC";
      });
  return static_cast<std::size_t>(found - recording.flights.begin());
}

std::vector<std::string> ApplyTest::Writes() const {
  static const std::set<std::string> kReads = {"SCAN", "KEYS",  "TYPE", "HGETALL", "LRANGE",
                                               "AUTH", "MULTI", "EXEC", "WATCH",   "UNWATCH"};
  std::vector<std::string> writes;
  for (const model::Command& command : model::CommandsOf(recording.flights)) {
    if (kReads.count(command.front()) == 0) writes.push_back(command.front());
  }
  return writes;
}

bool IsRemovedBy(const std::string& uri, const std::string& key) {
  const std::string below = uri.back() == '/' ? uri : uri + "/";
  return key == uri || StartsWith(key, below) || StartsWith(key, "&&" + below);
}

std::string StoreDifference(const model::Store& real, const model::Store& expected) {
  std::string text;
  for (const auto& [key, stored] : real) {
    const auto found = expected.find(key);
    if (found == expected.end()) {
      text += "too much: " + model::Dump({{key, stored}});
    } else if (!(found->second == stored)) {
      text += "stored:\n" + model::Dump({{key, stored}}) + "expected:\n" +
              model::Dump({{key, found->second}});
    }
  }
  for (const auto& [key, stored] : expected) {
    if (real.count(key) == 0) text += "missing: " + model::Dump({{key, stored}});
  }
  return text;
}

std::size_t Random(std::mt19937_64& generator, std::size_t limit) {
  return static_cast<std::size_t>(generator() % limit);
}

std::size_t ChangeAtRandom(std::mt19937_64& generator, const std::string& uri,
                           model::Store* store) {
  static const std::vector<std::string> kTexts = {"x",         "other", "",
                                                  "line\nend", "é\"\\", std::string("nul\0", 4)};
  const std::string& text = kTexts[Random(generator, kTexts.size())];
  const std::string new_key = uri + "/New" + std::to_string(Random(generator, 1000));
  const std::size_t kind = Random(generator, 8);
  if (store->empty() || kind == 0) {
    if (store->count(new_key) != 0) return 0;
    ChangeType(Random(generator, 3), text, &(*store)[new_key]);
    return 1;
  }
  const auto chosen =
      std::next(store->begin(), static_cast<long>(Random(generator, store->size())));
  if (kind == 1) {
    store->erase(chosen);
    return 1;
  }
  if (kind == 2) {
    if (store->count(new_key) != 0) return 0;
    (*store)[new_key] = chosen->second;
    store->erase(chosen);
    return 2;
  }
  auto& value = chosen->second.value;
  if (kind == 3 || std::holds_alternative<std::string>(value)) {
    ChangeType(Random(generator, 3), text, &chosen->second);
    return 1;
  }
  if (model::Hash* hash = std::get_if<model::Hash>(&value)) {
    return ChangeHash(generator, text, hash) ? 1 : 0;
  }
  return ChangeList(generator, text, &std::get<model::List>(value)) ? 1 : 0;
}

model::Store RandomStore(std::mt19937_64& generator, const model::RandomTreeOptions& options) {
  model::Store store;
  if (Random(generator, 8) != 0) {
    const TempDirectory directory;
    model::WriteRandomTree(generator, directory.path(), options);
    model::MemoryEndpoint endpoint(store);
    (void)model::RunModel(endpoint, {"create", directory.path(), options.uri});
  }
  for (std::size_t changes = Random(generator, 8); changes > 0; --changes) {
    (void)ChangeAtRandom(generator, options.uri, &store);
  }
  if (Random(generator, 2) == 0) AddForeignKeys(generator, options.uri, &store);
  return store;
}
