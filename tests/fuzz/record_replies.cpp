// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Writes the seeds of replies_fuzzer that need no imagination into a folder: the answers of a
// server in memory to each of the runs, over an empty store, over what the run itself has stored,
// and over a store that holds every member in another shape.
//
//   record_replies FOLDER
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include "connection/connection_state.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/machine.h"
#include "fuzz/memory_server.h"
#include "fuzz/reply_runs.h"
#include "model/memory_store.h"

namespace {

// Lists in the place of hashes and the other way round, markers that lead to them, keys below.
model::Store OtherShapes() {
  model::Store store;
  model::Hash root;
  for (const char* name : {"A", "Text", "Link", "Values"}) {
    const std::string key = std::string("&&/r/") + name;
    root[std::string("&&Object ") + name + " " + key] = "";
    store[key] = {model::Hash{{"Old", "1"}}};
    store[key + "/Below"] = {model::List{"\"below\""}};
  }
  root["&&ObjectRef Text /elsewhere"] = "";
  root["&&Array Object &&/r/Object"] = "";
  store["&&/r/Object"] = {model::List{"&&Object &&/r/Object/0"}};
  store["&&/r/Object/0"] = {model::Hash{{"Old", "1"}}};
  store["/i"] = {model::List{"\"plain\""}};
  store["/r"] = {root};
  return store;
}

// Plays the run and writes what the server answered.
void Record(char selector, const std::string& path, model::Store* store) {
  const ReplyRun run = SelectReplyRun(static_cast<unsigned char>(selector));
  Machine machine = MachineOf(run);
  MemoryServer server(store);
  machine.server = &server;
  Connect(run);
  (void)RunProgram(&machine, run.arguments);
  ostrafel::Connection = {};

  std::ofstream file(path, std::ios::binary);
  file << selector << server.answers();
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    (void)std::fputs("Usage: record_replies FOLDER\n", stderr);
    return 2;
  }
  try {
    const std::string folder = argv[1];
    for (const char selector : std::string("03@ABCDG")) {
      const std::string path = folder + "/recorded-" + selector;
      model::Store store;
      Record(selector, path + "-empty", &store);
      Record(selector, path + "-again", &store);
      model::Store other_shapes = OtherShapes();
      Record(selector, path + "-other-shapes", &other_shapes);
    }
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "record_replies: %s\n", error.what());
    return 1;
  }
  return 0;
}
