// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Stores that no create has made, and some that were made to do harm.
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "export/export_fixture.h"
#include "export/reached_keys.h"
#include "layout/layout.h"
#include "memory/memory_server.h"
#include "memory/server_copy.h"
#include "support/repeated.h"
#include "support/test_factor.h"

namespace {

namespace fs = std::filesystem;

using model::Command;
using ostrafel::CopyOf;
using ostrafel::Dump;
using ostrafel::Hash;
using ostrafel::List;
using ostrafel::Server;

class HostileStore : public ExportTest {
 protected:
  HostileStore() {
    place.Write("beside/file", "stays");
    around = ListingOf(place.path());
  }

  // Exports all of /r. Expects this status and an end in good time, that nothing but the folder has
  // changed, and that the tree can be loaded. The store is what it makes then: of status 0 all of
  // /r, and what that leads to. Returns what was said.
  Finished ExportHostile(int status) {
    fs::remove_all(out);
    Finished finished = Export({"/r", out});
    EXPECT_EQ(finished.status, status) << finished.out << finished.err.substr(0, 2000);
    EXPECT_EQ(finished.err.empty(), finished.status == 0);
    EXPECT_EQ(Difference(around, ListingOf(place.path(), "out")), "");
    if (finished.status != 2) LoadBack(finished);
    return finished;
  }

  // Loads what was exported into the empty store.
  void LoadBack(const Finished& finished) {
    const Server before = finished.status == 0 ? CopyOf(store.Contents()) : Server();
    (void)store.Run("FLUSHALL");
    const Finished loaded = RunProgram(ProgramCommand({"create", out, "/r"}));
    EXPECT_EQ(loaded.status, 0) << loaded.err.substr(0, 2000);
    if (finished.status != 0) return;
    const Server after = CopyOf(store.Contents());
    const std::string wanted = Dump(WhatIsExported(before, {"/r", true}, after));
    EXPECT_EQ(ostrafel::Difference(wanted, Dump(after)).substr(0, 2000), "");
  }

  void Store(const Server& server) {
    for (const auto& [key, value] : server.keys) {
      Command command = {"RPUSH", key};
      if (const auto* list = std::get_if<List>(&value)) {
        command.insert(command.end(), list->begin(), list->end());
      } else {
        command[0] = "HSET";
        for (const auto& [field, text] : std::get<Hash>(value)) {
          command.insert(command.end(), {field, text});
        }
      }
      (void)store.Run(command);
    }
  }

  void ExpectSaid(const Finished& finished, const std::string& text) {
    EXPECT_NE(finished.err.find(text), std::string::npos) << text << "\n"
                                                          << finished.err.substr(0, 2000);
  }

  Listing around;
};

TEST_F(HostileStore, TypesThatNoCreateMakes) {
  (void)store.Run("HSET | /r | Name | \"A\" | &&Object S &&/r/S | ");
  (void)store.Run("SADD | /r/set | x");
  (void)store.Run("ZADD | /r/sorted | 1 | x");
  (void)store.Run("XADD | /r/stream | * | a | b");
  (void)store.Run("SET | /r/string | x");
  (void)store.Run("SET | &&/r/S | x");
  (void)store.Run("RPUSH | /r/list | 1");
  const Finished finished = ExportHostile(1);
  for (const char* key : {"set", "sorted", "stream", "string"}) {
    ExpectSaid(finished,
               std::string("ostrafel-export: /r/") + key + ": holds neither a hash nor a list\n");
  }
  ExpectSaid(finished, "/r/list: a list that no document has a record of\n");
  ExpectSaid(finished, "ostrafel-export: &&/r/S: holds neither a hash nor a list\n");
  EXPECT_EQ(finished.out, "1 resource written to " + out + "\n");
}

// --- Names ---------------------------------------------------------------------------------------

TEST_F(HostileStore, NoKeyLeadsOutOfTheFolder) {
  for (const std::string& rest :
       {std::string(".."), std::string("../beside"), std::string("../../beside/file"),
        std::string("a/../../beside"), std::string("./x"), std::string("/beside"), std::string("/"),
        std::string("a//b"), std::string("x\0y", 3), std::string(".. /x"),
        std::string("index.json"), std::string("index.json/index.json"), std::string(256, 'n'),
        Repeated("long/", 1000) + "er", std::string("~"), std::string("$HOME"),
        std::string(".ostrafel-export-XXXXXX"), std::string("%1"), std::string("line\nend")}) {
    (void)store.Run(Command{"HSET", "/r/" + rest, "Name", "\"A\""});
    const std::string id = "/r/" + rest;
    (void)store.Run(Command{"HSET", id + "/own", "@odata.id", '"' + id + "/own\"", "x", "1"});
  }
  const Finished finished = ExportHostile(1);
  ExpectSaid(finished, "/r/../beside: no folder can be named after the key\n");
  EXPECT_EQ(finished.err.find("/r/line"), std::string::npos);
  EXPECT_TRUE(fs::exists(out + "/line\nend/index.json"));
}

TEST_F(HostileStore, DeepKeys) {
  (void)store.Run(Command{"HSET", "/r" + Repeated("/d", 128), "Name", "\"A\""});
  ExportHostile(0);
  EXPECT_EQ(Export({"--quiet", "--force", "/r", out}).status, 0);
  (void)store.Run(Command{"HSET", "/r" + Repeated("/d", 5000), "Name", "\"A\""});
  ExportHostile(1);
}

TEST_F(HostileStore, NothingOfADeepKeyStaysAfterAFailure) {
  (void)store.Run(Command{"HSET", "/r" + Repeated("/d", 128), "Name", "\"A\""});
  place.Write("out/d", "in the way");
  place.Write("out/index.json", "old");
  const Listing before = ListingOf(place.path());
  const Finished finished = Export({"--force", "/r", out});
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(finished.err, "ostrafel-export: " + out + "/d: Not a directory\n");
  EXPECT_EQ(Difference(before, ListingOf(place.path())), "");
}

TEST_F(HostileStore, KeysAndValuesOfMegabytes) {
  const std::string big(3000000, 'x');
  (void)store.Run(Command{"HSET", "/r", "Big", '"' + big + '"', big, "1"});
  (void)store.Run(Command{"RPUSH", "&&/r/L", '"' + big + '"', "2"});
  (void)store.Run(Command{"HSET", "/r", "&&Array L &&/r/L", ""});
  EXPECT_EQ(ExportHostile(0).out, "1 resource written to " + out + "\n");
  (void)store.Run(Command{"HSET", "/r/" + big, "x", "1"});
  ExportHostile(1);
}

TEST_F(HostileStore, VeryManyFieldsAndElements) {
  Command hash = {"HSET", "/r"};
  Command list = {"RPUSH", "&&/r/L"};
  for (int i = 0; i < 100000; ++i) {
    hash.insert(hash.end(), {"f" + std::to_string(i), std::to_string(i)});
    list.push_back(std::to_string(i));
  }
  hash.insert(hash.end(), {"&&Array L &&/r/L", ""});
  (void)store.Run(hash);
  (void)store.Run(list);
  ExportHostile(0);
}

// --- Records that lead in circles ----------------------------------------------------------------

std::string OwnKey(const std::string& key) { return '"' + key + '"'; }

TEST_F(HostileStore, AKeyThatHoldsItself) {
  (void)store.Run(Command{"HSET", "/r", "@odata.id", OwnKey("/r"), "&&Object Self /r", ""});
  ExportHostile(0);
}

TEST_F(HostileStore, TwoKeysThatHoldEachOther) {
  (void)store.Run(
      Command{"HSET", "/r/a", "@odata.id", OwnKey("/r/a"), "&&Object Other /r/b", "", "x", "1"});
  (void)store.Run(
      Command{"HSET", "/r/b", "@odata.id", OwnKey("/r/b"), "&&Object Other /r/a", "", "x", "1"});
  ExportHostile(0);
}

TEST_F(HostileStore, FiveThousandKeysThatEachHoldTheNext) {
  const auto key = [](int number) { return "/r/" + std::to_string(number % 5000); };
  for (int i = 0; i < 5000; ++i) {
    (void)store.Run(Command{"HSET", key(i), "@odata.id", OwnKey(key(i)), "x", "1",
                            "&&Object Next " + key(i + 1), ""});
  }
  ExportHostile(1);
}

TEST_F(HostileStore, PartsThatHoldThemselves) {
  (void)store.Run("HSET | /r | &&Object A &&/r/A | ");
  (void)store.Run("HSET | &&/r/A | x | 1 | &&Object A &&/r/A | ");
  (void)store.Run("RPUSH | &&/r/A/L | &&Array &&/r/A/L");
  (void)store.Run("HSET | &&/r/A | &&Array L &&/r/A/L | ");
  ExportHostile(1);
}

TEST_F(HostileStore, AKeyWithRecordsOfAllOthers) {
  Command all = {"HSET", "/r/all"};
  for (int i = 0; i < 2000; ++i) {
    const std::string key = "/r/" + std::to_string(i);
    all.insert(all.end(), {"&&Object m" + std::to_string(i) + " " + key, ""});
    (void)store.Run(
        Command{"HSET", key, "@odata.id", OwnKey(key), "x", "1", "&&Object All /r/all", ""});
  }
  all.insert(all.end(), {"@odata.id", OwnKey("/r/all")});
  (void)store.Run(all);
  ExportHostile(0);
}

// --- Garbage -------------------------------------------------------------------------------------

// Stores that a create could have made, but for one thing or two.
class Garbler {
 public:
  explicit Garbler(std::mt19937::result_type seed) : generator_(seed) {}

  Server Make() {
    server_.keys.clear();
    objects_ = 0;
    for (const char* key : {"/r", "/r/a", "/r/a/b", "/alone"}) {
      if (key == std::string("/r") || Below(4) != 0) Grow(key, Below(2) == 0, 0);
    }
    for (std::size_t i = 1 + Below(2); i > 0; --i) Garble();
    return std::move(server_);
  }

 private:
  std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(generator_() % limit); }

  std::string Text() {
    std::string joined;
    for (std::size_t i = 1 + Below(3); i > 0; --i) joined += kWords[Below(kWords.size())];
    return joined;
  }

  std::string Scalar() { return kScalars[Below(kScalars.size())]; }

  void Grow(const std::string& key, bool has_id, std::size_t depth) {
    Hash hash = {{"Name", "\"A\""}};
    if (has_id) hash["@odata.id"] = '"' + key + '"';
    for (std::size_t i = Below(5); i > 0; --i) {
      const std::string name = "m" + std::to_string(i);
      const std::string record = Record(ostrafel::DerivedKey(key, name), name + " ", depth);
      if (record.empty()) {
        hash[name] = Scalar();
      } else {
        hash[record] = "";
      }
    }
    server_.keys[key] = std::move(hash);
  }

  void GrowList(const std::string& key, std::size_t depth) {
    List list = {"1"};
    for (std::size_t i = 1 + Below(3); i > 0; --i) {
      const std::string record =
          Record(ostrafel::DerivedKey(key, std::to_string(list.size())), "", depth);
      list.push_back(record.empty() ? Scalar() : record);
    }
    server_.keys[key] = std::move(list);
  }

  // Of a value in that place, with what it points to; empty for a scalar.
  std::string Record(const std::string& place, const std::string& name, std::size_t depth) {
    const std::size_t kind = Below(depth < 3 ? 6 : 3);
    if (kind < 2) return {};
    if (kind == 2) return "&&ObjectRef " + name + "/x";
    if (kind == 3) {
      GrowList(place, depth + 1);
      return "&&Array " + name + place;
    }
    const bool has_id = kind == 5;
    const std::string key = has_id ? "/o/" + std::to_string(++objects_) : place;
    Grow(key, has_id, depth + 1);
    return "&&Object " + name + key;
  }

  void Garble() {
    if (Below(5) == 0) {
      server_.keys[kWords[Below(3)] + '/' + Text()] = Hash{{"Name", Scalar()}};
      return;
    }
    auto entry = server_.keys.begin();
    std::advance(entry, Below(server_.keys.size()));
    if (Below(8) == 0 && server_.keys.size() > 1) {
      server_.keys.erase(entry);
    } else if (auto* list = std::get_if<List>(&entry->second)) {
      list->at(Below(list->size())) = Text();
    } else {
      GarbleHash(&std::get<Hash>(entry->second));
    }
  }

  void GarbleHash(Hash* hash) {
    auto field = hash->begin();
    std::advance(field, Below(hash->size()));
    switch (Below(4)) {
      case 0:
        (*hash)[Text()] = Scalar();
        return;
      case 1:
        (*hash)[Text()] = "";
        return;
      case 2:
        field->second = Text();
        return;
      default:
        if (hash->size() > 1) hash->erase(field);
    }
  }

  const std::vector<std::string> kWords = {
      "/r",           "/r/a",       "&&/r/a",    "&&Object ", "&&Array ",
      "&&ObjectRef ", "\"x\"",      "1",         "5.",        "-2147483648",
      "true",         "",           " ",         "\xff\xfe",  std::string(1, 0),
      "\xed\xa0\x80", "\"",         "@odata.id", "&&File",    "\"/r/a\"",
      "\"../../x\"",  "\n",         "\x1b[2J",   "/..",       "\\u0000",
      "1e999999",     "{\"a\": 1}", "&&",        "/"};
  const std::vector<std::string> kScalars = {"\"x\"", "\"\"", "1", "-7", "5.", "true", "null"};
  std::mt19937 generator_;
  Server server_;
  std::size_t objects_ = 0;  // with ids
};

TEST_F(HostileStore, AnyBytes) {
  Garbler garbler(11);
  unsigned long whole = 0;
  const unsigned long rounds = 30 * TestFactor();
  for (unsigned long round = 0; round < rounds && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    (void)store.Run("FLUSHALL");
    const Server made = garbler.Make();
    Store(made);
    fs::remove_all(out);
    const Finished finished = Export({"/r", out});
    ASSERT_TRUE(finished.status == 0 || finished.status == 1) << finished.err;
    ASSERT_EQ(finished.err.find('\x1b'), std::string::npos);
    LoadBack(finished);
    if (HasFailure()) ADD_FAILURE() << finished.err << Dump(made);
    if (finished.status == 0) ++whole;
  }
  RecordProperty("whole", std::to_string(whole));
  EXPECT_GT(whole, rounds / 5);
  EXPECT_LT(whole, rounds * 4 / 5);
  EXPECT_EQ(Difference(around, ListingOf(place.path(), "out")), "");
}

}  // namespace
