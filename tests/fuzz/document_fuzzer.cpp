// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Documents against a server in memory. The input is a sequence of records parted by the byte 0x1E
// (RS, which no JSON text holds). A record that begins with
//   c, C  is a document that a create loads to /r, or to /r/
//   U     is a document that an update merges into /r/
//   w     is the content of the files f.json and f.xml, which "&&File" may name from here on
// and any other record, a JSON text as it is for example, is a document that an update merges into
// /r. All runs find the store that the former ones left; a single record is played twice.
//
// Every run is played by the program and by the model, each with a store of its own. Both outputs,
// the status, every command sent and the store afterwards must be the same.
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "connection/connection_state.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/machine.h"
#include "fuzz/memory_server.h"
#include "model/endpoint.h"
#include "model/memory_store.h"
#include "model/run_model.h"

namespace {

constexpr const char* kDocumentPath = "/static data/index.json";

// Steps of the glob matcher that one run may cost. Several "*" in one pattern make the naive
// matcher exponential, as they do the real server: that is no finding here.
constexpr double kMatcherSteps = 2e5;

struct TooSlow : std::runtime_error {
  TooSlow() : std::runtime_error("patterns that take too long to match") {}
};

// A server in memory that refuses patterns of which the matcher could need too many steps.
class BoundedEndpoint : public model::MemoryEndpoint {
 public:
  explicit BoundedEndpoint(model::Store* store) : MemoryEndpoint(*store), store_(*store) {}

  std::vector<model::Reply> Exchange(const std::vector<model::Command>& flight) override {
    for (const model::Command& command : flight) {
      if (command[0] == "keys") AddSteps(command[1], KeyLengths());
      if (command[0] == "SCAN") AddSteps(command[3], KeyLengths());
      if (command[0] == "HSCAN") AddSteps(command[4], FieldLengths(command[1]));
    }
    return MemoryEndpoint::Exchange(flight);
  }

 private:
  std::vector<std::size_t> KeyLengths() const {
    std::vector<std::size_t> lengths;
    for (const auto& [key, stored] : store_) lengths.push_back(key.size());
    return lengths;
  }

  std::vector<std::size_t> FieldLengths(const std::string& key) const {
    std::vector<std::size_t> lengths;
    const auto found = store_.find(key);
    if (found == store_.end()) return lengths;
    if (const auto* hash = std::get_if<model::Hash>(&found->second.value)) {
      for (const auto& [field, value] : *hash) lengths.push_back(field.size());
    }
    return lengths;
  }

  void AddSteps(const std::string& pattern, const std::vector<std::size_t>& lengths) {
    // Every "*" but a last one tries every place of the text.
    const std::string_view inner = std::string_view(pattern).substr(0, pattern.size() - 1);
    for (const std::size_t length : lengths) {
      double steps = 1;
      for (const char c : inner) {
        if (c == '*') steps *= static_cast<double>(length + 1);
        if (steps > kMatcherSteps) throw TooSlow();
      }
      steps_ += steps * static_cast<double>(pattern.size() + length);
    }
    if (steps_ > kMatcherSteps * 100) throw TooSlow();
  }

  const model::Store& store_;
  double steps_ = 0;
};

// Two worlds that must stay equal.
class Pair {
 public:
  Pair() {
    for (const char* extension : {"json", "xml"}) SetIncluded(extension, "{\"Included\": [1]}");
    ostrafel::ConnectionConfig config;
    config.type = ostrafel::UnixSocket;
    config.socket_path = "/redis.sock";
    ostrafel::Connection.ConnectionConfigCopy = config;
  }
  ~Pair() { ostrafel::Connection = {}; }
  Pair(const Pair&) = delete;
  Pair& operator=(const Pair&) = delete;

  void SetIncluded(const std::string& extension, std::string_view content) {
    machine_.files[model::kIncludeRoot + "f." + extension] = content;
  }

  void Run(const std::string& action, const std::string& uri, std::string_view document) {
    machine_.files[kDocumentPath] = document;

    BoundedEndpoint endpoint(&expected_store_);
    model::Outcome expected;
    {
      const OnMachine on_machine(&machine_);
      expected = model::RunModel(endpoint, {action, kDocumentPath, uri});
    }

    MemoryServer server(&store_);
    machine_.server = &server;
    const int status = RunProgram(&machine_, {action, kDocumentPath, uri});

    ExpectSame("standard error", expected.err, machine_.err);
    ExpectSame("standard output", expected.out, machine_.out);
    ExpectSame("the status", std::to_string(expected.status), std::to_string(status));
    const std::vector<model::Command> commands = model::CommandsOf(endpoint.Flights());
    if (commands != server.commands()) {
      ReportDifference("the commands", Describe(commands), Describe(server.commands()));
    }
    if (!(expected_store_ == store_)) {
      ReportDifference("the store", model::Dump(expected_store_), model::Dump(store_));
    }
  }

 private:
  Machine machine_;
  model::Store store_;
  model::Store expected_store_;
};

void PlayRecord(Pair* pair, std::string_view record) {
  const char kind = record.empty() ? '\0' : record[0];
  const std::string_view rest = record.substr(record.empty() ? 0 : 1);
  switch (kind) {
    case 'c':
      return pair->Run("create", "/r", rest);
    case 'C':
      return pair->Run("CREATE", "/r/", rest);
    case 'U':
      return pair->Run("UPDATE", "/r/", rest);
    case 'w':
      pair->SetIncluded("json", rest);
      return pair->SetIncluded("xml", rest);
    default:
      return pair->Run("update", "/r", record);
  }
}

}  // namespace

void TestOneInput(std::string_view input) {
  const std::vector<std::string_view> records = SplitRecords(input);
  Pair pair;
  try {
    for (const std::string_view record : records) PlayRecord(&pair, record);
    if (records.size() == 1) PlayRecord(&pair, records[0]);
  } catch (const TooSlow&) {
    return;
  }
}
