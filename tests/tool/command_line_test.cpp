// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/command_line.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tool/tool.h"

namespace ostrafel {

namespace {

using Words = std::vector<std::string>;

const std::string kHint = "Try '" + std::string(ToolName) + " --help' for more information.\n";

// What was taken, and how that ended.
struct Taken {
  Step step;
  Words options;
  Words arguments;
  std::string err;
};

// Reads a line with -a, --all and --file NAME, of which --file stop ends it with status 7.
Taken Read(Words words) {
  const std::array<option, 3> options = {{{"all", no_argument, nullptr, 'a'},
                                          {"file", required_argument, nullptr, 'f'},
                                          {nullptr, 0, nullptr, 0}}};
  words.insert(words.begin(), "/path/of/program");
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  Taken taken;
  const auto take = [&](int letter, const std::string& text) -> Step {
    taken.options.push_back(std::string(1, static_cast<char>(letter)) + text);
    return text == "stop" ? Step(7) : std::nullopt;
  };
  testing::internal::CaptureStderr();
  taken.step = ReadOptions(static_cast<int>(words.size()), argv.data(), "a", options.data(), take,
                           &taken.arguments);
  taken.err = testing::internal::GetCapturedStderr();
  return taken;
}

TEST(ReadOptions, GivesOptionsInOrderAndArgumentsApart) {
  const Taken taken = Read({"one", "--file=x", "-aa", "two", "--file", "", "--", "--all"});
  EXPECT_FALSE(taken.step);
  EXPECT_EQ(taken.options, (Words{"fx", "a", "a", "f"}));
  EXPECT_EQ(taken.arguments, (Words{"one", "two", "--all"}));
  EXPECT_EQ(taken.err, "");
}

TEST(ReadOptions, EndsWhereAnOptionEndsIt) {
  const Taken taken = Read({"-a", "--file", "stop", "-a"});
  EXPECT_EQ(taken.step, 7);
  EXPECT_EQ(taken.options, (Words{"a", "fstop"}));
  EXPECT_EQ(taken.arguments, Words{});
}

TEST(ReadOptions, TellsWhatIsWrongWithTheProgramsOwnName) {
  for (const Words& words : {Words{"-x"}, Words{"--none"}, Words{"--file"}, Words{"--all=x"}}) {
    const Taken taken = Read(words);
    EXPECT_EQ(taken.step, 2);
    EXPECT_EQ(taken.err.compare(0, std::string(ToolName).size() + 2, ToolName + std::string(": ")),
              0)
        << taken.err;
    EXPECT_EQ(taken.err.substr(taken.err.find('\n') + 1), kHint);
  }
}

TEST(ReadOptions, BeginsAfreshEachTime) {
  EXPECT_EQ(Read({"-xa"}).step, 2);
  const Taken taken = Read({"-a", "x"});
  EXPECT_EQ(taken.options, Words{"a"});
  EXPECT_EQ(taken.arguments, Words{"x"});
}

TEST(TakeWord, TakesWordsThatItKnows) {
  const std::array<Word<int>, 2> words = {{{"one", 1}, {"two", 2}}};
  int value = 0;
  EXPECT_FALSE(TakeWord("count", words, "two", &value));
  EXPECT_EQ(value, 2);
  testing::internal::CaptureStderr();
  EXPECT_EQ(TakeWord("count", words, "three", &value), 2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            ToolName + std::string(": --count knows no 'three', only one, two\n") + kHint);
  EXPECT_EQ(value, 2);
}

TEST(TakeFile, TakesNamesThatAreNotEmpty) {
  std::string name = "before";
  testing::internal::CaptureStderr();
  EXPECT_EQ(TakeFile("file", "", &name), 2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            ToolName + std::string(": --file needs a name that is not empty\n") + kHint);
  EXPECT_EQ(name, "before");
  EXPECT_FALSE(TakeFile("file", "a b", &name));
  EXPECT_EQ(name, "a b");
}

}  // namespace

}  // namespace ostrafel
