// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Stores that no create has made, and some that were made to do harm.
#include <cstddef>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "export/export_fixture.h"
#include "support/repeated.h"
#include "support/test_factor.h"

namespace {

namespace fs = std::filesystem;

using model::Command;

class HostileStore : public ExportTest {
 protected:
  HostileStore() {
    place.Write("beside/file", "stays");
    around = ListingOf(place.path());
  }

  // Exports all of /r. Expects this status and an end in good time, that nothing but the folder has
  // changed, and that the tree can be loaded. Returns what was said.
  Finished ExportHostile(int status) {
    fs::remove_all(out);
    Finished finished = Export({"/r", out});
    EXPECT_EQ(finished.status, status) << finished.out << finished.err.substr(0, 2000);
    EXPECT_EQ(finished.err.empty(), finished.status == 0);
    EXPECT_EQ(Difference(around, ListingOf(place.path(), "out")), "");
    if (finished.status == 2) return finished;
    const Finished loaded = RunProgram(ProgramCommand({"create", out, "/r"}));
    EXPECT_EQ(loaded.status, 0) << loaded.err.substr(0, 2000);
    return finished;
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
  const std::string before = StoreText();
  ExportHostile(0);
  EXPECT_EQ(StoreText(), before);
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
  const std::string before = StoreText();
  ExportHostile(0);
  EXPECT_EQ(StoreText(), before);
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
  const std::string before = StoreText();
  ExportHostile(0);
  EXPECT_EQ(StoreText(), before);
}

// --- Garbage -------------------------------------------------------------------------------------

TEST_F(HostileStore, AnyBytes) {
  std::mt19937 generator(11);
  const std::vector<std::string> words = {
      "/r",           "/r/a",       "&&/r/a",    "&&Object ", "&&Array ",
      "&&ObjectRef ", "\"x\"",      "1",         "5.",        "-2147483648",
      "true",         "",           " ",         "\xff\xfe",  std::string(1, 0),
      "\xed\xa0\x80", "\"",         "@odata.id", "&&File",    "\"/r/a\"",
      "\"../../x\"",  "\n",         "\x1b[2J",   "/..",       "\\u0000",
      "1e999999",     "{\"a\": 1}", "&&",        "/"};
  const auto text = [&] {
    std::string joined;
    for (std::size_t i = 1 + generator() % 3; i > 0; --i)
      joined += words[generator() % words.size()];
    return joined;
  };
  for (unsigned long round = 0; round < 20 * TestFactor(); ++round) {
    (void)store.Run("FLUSHALL");
    for (int i = 0; i < 60; ++i) {
      std::string key = words[generator() % 3] + (generator() % 2 == 0 ? "" : "/" + text());
      if (generator() % 3 == 0) {
        (void)store.Run(Command{"RPUSH", key, text()});
      } else {
        (void)store.Run(Command{"HSET", key, text(), text(), text(), ""});
      }
    }
    fs::remove_all(out);
    Finished finished = Export({"/r", out});
    ASSERT_TRUE(finished.status == 0 || finished.status == 1) << round << finished.err;
    ASSERT_EQ(finished.err.find('\x1b'), std::string::npos);
    const std::string before = StoreText();
    const Finished loaded = RunProgram(ProgramCommand({"create", out, "/r"}));
    ASSERT_EQ(loaded.status, 0) << round << loaded.err;
    ASSERT_TRUE(finished.status == 1 || StoreText() == before) << round;
  }
  EXPECT_EQ(Difference(around, ListingOf(place.path(), "out")), "");
}

}  // namespace
