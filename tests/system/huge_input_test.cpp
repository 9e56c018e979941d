// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Documents at the limits of the parser and beyond any sensible size.
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <string>

#include "support/repeated.h"
#include "support/scoped_setting.h"
#include "system/input_size.h"
#include "system/system_fixture.h"

namespace {

constexpr int kMebibyte = 1 << 20;

// So many values inside each other are accepted, the innermost one and the root object included.
constexpr int kDeepest = 2048;

// A number inside so many objects.
std::string NestedObjects(std::size_t depth) {
  return Repeated("{\"a\":", depth) + "1" + Repeated("}", depth);
}

// A number inside so many arrays and the root object.
std::string NestedArrays(std::size_t depth) {
  return "{\"a\":" + Repeated("[", depth - 1) + "1" + Repeated("]", depth - 1) + "}";
}

// A stack of 1 MiB. Instrumented code needs more for the same calls, and so does a launcher.
void TakeSmallStack() {
  const rlim_t size = kMebibyte * (kIsSanitized || HasLauncher() ? rlim_t{32} : rlim_t{1});
  const rlimit limit = {size, size};
  if (setrlimit(RLIMIT_STACK, &limit) != 0) _exit(126);
}

class HugeInput : public SystemTest {
 protected:
  // Runs the program on the file, without a recorder between it and the server, which would hold
  // all that is sent, and expects success.
  void LoadDirectly(const std::string& action, const std::string& file,
                    const std::string& uri = "/r") {
    RuntimeFiles files;
    files.unixsocket = ServerSocket();
    Publish(files);
    RunOptions options;
    options.in_child = TakeSmallStack;
    options.time_limit = std::chrono::minutes(5);
    const Finished run = RunProgram(ProgramCommand({action, file, uri}), options);
    EXPECT_EQ(run.out, kSuccessLine);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 0);
  }

  // Runs the program, likewise with a small stack, and expects that the parser refuses the file.
  void ExpectTooDeep(const std::string& action, const std::string& file, const std::string& near) {
    RunOptions options;
    options.in_child = TakeSmallStack;
    const Finished run = Ostrafel({action, file, "/r"}, options);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "error: on line 1: maximum parsing depth reached near '" + near +
                           "'\nThe content of " + file + " is not a valid JSON data.\n");
    EXPECT_EQ(run.status, 255);
  }

  long long Count(const std::string& command, const std::string& key) {
    return store.Run(model::Command{command, key}).integer;
  }

  // How often the server carried out the command since CONFIG RESETSTAT.
  long long Calls(const std::string& command) {
    const std::string statistics = store.Run("INFO | commandstats").text;
    const std::string start = "cmdstat_" + command + ":calls=";
    const std::size_t found = statistics.find(start);
    return found == std::string::npos ? 0 : std::stoll(statistics.substr(found + start.size()));
  }
};

TEST_F(HugeInput, ObjectsAreNestedToTheParsersLimit) {
  const std::string file = tree.Write("a.json", NestedObjects(kDeepest - 1));
  for (const char* action : {"create", "update"}) {
    LoadDirectly(action, file);
    EXPECT_EQ(store.Run("DBSIZE").integer, kDeepest - 1);
    const std::string deepest = "&&/r" + Repeated("/a", kDeepest - 2);
    EXPECT_EQ(Count("HLEN", deepest), 1);
    EXPECT_EQ(store.Run(model::Command{"HGET", deepest, "a"}).text, "1");
    EXPECT_EQ(store.Run("HEXISTS | /r | &&Object a &&/r/a").integer, 1);
  }
}

TEST_F(HugeInput, ArraysAreNestedToTheParsersLimit) {
  const std::string file = tree.Write("a.json", NestedArrays(kDeepest - 1));
  for (const char* action : {"create", "update"}) {
    LoadDirectly(action, file);
    EXPECT_EQ(store.Run("DBSIZE").integer, kDeepest - 1);
    const std::string deepest = "&&/r/a" + Repeated("/0", kDeepest - 3);
    EXPECT_EQ(Count("LLEN", deepest), 1);
    EXPECT_EQ(store.Run(model::Command{"LINDEX", deepest, "0"}).text, "1");
    EXPECT_EQ(store.Run("LINDEX | &&/r/a | 0").text, "&&Array &&/r/a/0");
  }
}

TEST_F(HugeInput, DeepArraysReplaceDeepObjectsAndALinkReplacesBoth) {
  LoadDirectly("create", tree.Write("a.json", NestedObjects(kDeepest - 1)));
  LoadDirectly("update", tree.Write("b.json", NestedArrays(kDeepest - 1)));
  EXPECT_EQ(store.Run("DBSIZE").integer, kDeepest - 1);
  EXPECT_EQ(Count("LLEN", "&&/r/a" + Repeated("/0", kDeepest - 3)), 1);
  LoadDirectly("update", tree.Write("c.json", R"({"a": {"@odata.id": "/x"}})"));
  EXPECT_EQ(store.Dump(), "hash | /r | &&ObjectRef a /x | \n");
}

TEST_F(HugeInput, DeeperNestingIsRefusedByTheParser) {
  ExpectTooDeep("update", tree.Write("a.json", NestedObjects(kDeepest)), "1");
  ExpectTooDeep("update", tree.Write("b.json", NestedObjects(1000000)), "{");
  ExpectTooDeep("create", tree.Write("c.json", NestedArrays(1000000)), "[");
  EXPECT_EQ(store.Dump(), "");
}

TEST_F(HugeInput, OneObjectHasUpToAMillionMembers) {
  const int count = Scaled(1000000);
  std::string document = "{";
  for (int i = 0; i < count; ++i) {
    document += (i == 0 ? "\"m" : ",\"m") + std::to_string(i) + "\":" + std::to_string(i);
  }
  LoadDirectly("create", tree.Write("a.json", document + "}"));
  EXPECT_EQ(Count("HLEN", "/r"), count);
  for (const int i : {0, 1999, 2000, 2001, count / 2, count - 1}) {
    const std::string number = std::to_string(i);
    EXPECT_EQ(store.Run("HGET | /r | m" + number).text, number);
  }
}

TEST_F(HugeInput, OneArrayHasUpToAMillionElements) {
  const int count = Scaled(1000000);
  LoadDirectly("create", tree.Write("a.json", R"({"a": [-1, -2, -3]})"));
  std::string document = "{\"a\":[";
  for (int i = 0; i < count; ++i) document += (i == 0 ? "" : ",") + std::to_string(i);
  LoadDirectly("update", tree.Write("a.json", document + "]}"));
  EXPECT_EQ(Count("LLEN", "&&/r/a"), count);
  for (const int i : {0, 1999, 2000, 2001, count / 2, count - 1}) {
    const std::string number = std::to_string(i);
    EXPECT_EQ(store.Run("LINDEX | &&/r/a | " + number).text, number);
  }
}

// The links of each member are searched among all fields of the hash, ten a round trip: what an
// update of one object costs grows with the square of its size.
TEST_F(HugeInput, OneLargeObjectIsUpdated) {
  const int count = Scaled(400);
  std::string document = "{";
  for (int i = 0; i < count; ++i) {
    document += (i == 0 ? "\"m" : ",\"m") + std::to_string(i) + "\":" + std::to_string(i);
  }
  const std::string file = tree.Write("a.json", document + "}");
  const ScopedSetting small_pages(&store, "hash-max-listpack-entries", "16");
  LoadDirectly("create", file);
  const std::string created = store.Dump();
  (void)store.Run("CONFIG | RESETSTAT");
  LoadDirectly("update", file);
  EXPECT_EQ(Calls("type"), count);
  // A search answers ten fields at a time, now and then some more.
  EXPECT_GT(Calls("hscan"), static_cast<long long>(count) * count / 20);
  EXPECT_LT(Calls("hscan"), static_cast<long long>(count) * count / 4);
  EXPECT_EQ(Calls("hset"), count);
  EXPECT_EQ(store.Dump(), created);
}

TEST_F(HugeInput, OneStringHasUpTo100Megabytes) {
  const int size = Scaled(100 * 1000 * 1000);
  const std::string text(static_cast<std::size_t>(size), 'x');
  const std::string file = tree.Write("a.json", "{\"A\": \"" + text + "\", \"L\": [\"\"]}");
  LoadDirectly("create", file);
  EXPECT_TRUE(store.Run("HGET | /r | A").text == "\"" + text + "\"");
  EXPECT_EQ(store.Run("LRANGE | &&/r/L | 0 | -1").elements.size(), 1U);
}

TEST_F(HugeInput, NamesIdsAndKeysHave64Kibibytes) {
  const std::string name(65536, 'n');
  const std::string id = "/" + std::string(65535, 'i');
  const std::string uri = "/" + std::string(65535, 'u');
  model::Store expected;
  expected[uri].value = model::Hash{{name, "1"},
                                    {"&&Object O " + id, ""},
                                    {"&&ObjectRef " + name + "2 " + id, ""},
                                    {"&&Array " + name + "3 &&" + uri + "/" + name + "3", ""}};
  expected[id].value = model::Hash{{"@odata.id", "\"" + id + "\""}, {name, "2"}};
  expected["&&" + uri + "/" + name + "3"].value = model::List{"\"" + name + "\""};
  std::string document = "{\"" + name + "\": 1, ";
  document += R"("O": {"@odata.id": ")" + id + "\", \"" + name + "\": 2}, ";
  document += "\"" + name + R"(2": {"@odata.id": ")" + id + "\"}, ";
  document += "\"" + name + "3\": [\"" + name + "\"]}";
  const std::string file = tree.Write("a.json", document);
  for (const char* action : {"create", "update"}) {
    LoadDirectly(action, file, uri);
    EXPECT_TRUE(store.Dump() == model::Dump(expected)) << action;
  }
}

}  // namespace
