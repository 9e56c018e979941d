// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The model's store in memory beside the real server: equal commands, equal replies.
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "support/resp.h"
#include "support/test_factor.h"
#include "system/system_fixture.h"

namespace {

class ModelStore : public SystemTest {
 protected:
  // The server finds keys and fields in no order.
  static model::Reply Sorted(model::Reply reply) {
    for (model::Reply& element : reply.elements) element = Sorted(element);
    const auto is_before = [](const model::Reply& left, const model::Reply& right) {
      return Format(left) < Format(right);
    };
    std::sort(reply.elements.begin(), reply.elements.end(), is_before);
    return reply;
  }

  void ExpectSame(const model::Command& command) {
    EXPECT_EQ(Format(Sorted(model::Execute(contents, command))), Format(Sorted(store.Run(command))))
        << model::Describe(command);
  }

  model::Store contents;
};

TEST_F(ModelStore, AnswersRandomCommandsAsTheServer) {
  contents["a"].value = std::string("text");
  store.Fill(contents);
  std::mt19937 generator(1);
  const auto pick = [&](const std::vector<std::string>& texts) {
    return texts[generator() % texts.size()];
  };
  for (unsigned long i = 0; i < 3000 * TestFactor(); ++i) {
    const std::string key = pick({"a", "b", "c", "d/x", ""});
    const std::string text = pick({"1", "2", "&&x", ""});
    const std::vector<model::Command> commands = {
        {"HSET", key, text, pick({"1", ""})},
        {"HDEL", key, text},
        {"HEXISTS", key, text},
        {"HSCAN", key, "0", "MATCH", pick({"*", "[1-2]", "?*"})},
        {"RPUSH", key, text},
        {"LREM", key, "0", text},
        {"LINDEX", key, "0"},
        {"TYPE", key},
        {"keys", pick({"*", "d/*", "[ab]"})},
        {"SCAN", "0", "MATCH", pick({"*", "?", "d*"}), "COUNT", "1000"},
        {i % 2 == 0 ? "del" : "UNLINK", key}};
    // Few are removals of a whole key, so that something is there to be asked for.
    ExpectSame(commands[generator() % (generator() % 3 == 0 ? 11 : 10)]);
    if (HasFailure()) break;
  }
  EXPECT_EQ(model::Dump(contents), store.Dump());
}

TEST_F(ModelStore, MatchesPatternsAsTheServer) {
  for (const char* text :
       {"",      "a",  "abc", "abcd", "ab", "a/b", "/r/", "/r",  "/r/a/b", "&&/r/a", "aXYb",
        "abbcc", "ac", "b",   "d",    "bx", "^",   "]",   "x",   "\\",     "-",      "[",
        "c",     "*",  "a\\", "a\\b", "?",  "A",   "[a",  "ab]", "aa",     "a-c"}) {
    ExpectSame({"RPUSH", text, "1"});
  }
  for (const char* pattern :
       {"",      "abc",     "*",     "**",     "/r/*",   "a*",     "a**b*", "*b*c", "a?c",
        "*?",    "?",       "[abc]", "[a-c]x", "[c-a]x", "[^a-c]", "[a^]",  "[]",   "[^]",
        "[\\]]", "[a\\-c]", "[a-]",  "[-a]",   "[abc",   "[",      "[^",    "[\\",  "\\*",
        "\\a",   "a\\",     "\\",    "a\\\\b", "*]",     "*[",     "?[a-c]"}) {
    ExpectSame({"KEYS", pattern});
    ExpectSame({"SCAN", "0", "MATCH", pattern, "COUNT", "1000"});
  }
}

}  // namespace
