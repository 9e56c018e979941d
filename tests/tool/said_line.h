// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Command lines of companions, taken in a test's own process.
#ifndef OSTRAFEL_TESTS_TOOL_SAID_LINE_H_
#define OSTRAFEL_TESTS_TOOL_SAID_LINE_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace ostrafel {

using Words = std::vector<std::string>;

/// What came of a line, and what was printed of it.
template <typename Line>
struct Said {
  Line line;
  std::string out;
  std::string err;
};

/// Has parse take these words behind the name of a program, as its main would.
template <typename Line>
Line LineOf(Line (*parse)(int argc, char** argv), Words words) {
  words.insert(words.begin(), "/some/where/program");
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  return parse(static_cast<int>(words.size()), argv.data());
}

/// The same, and catches what is printed.
template <typename Line>
Said<Line> SaidOf(Line (*parse)(int argc, char** argv), const Words& words) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  Said<Line> said;
  said.line = LineOf(parse, words);
  said.out = testing::internal::GetCapturedStdout();
  said.err = testing::internal::GetCapturedStderr();
  return said;
}

/// The options of a line that is right: nothing is printed.
template <typename Line>
auto RightOptions(const Said<Line>& said) {
  EXPECT_EQ(said.out + said.err, "");
  EXPECT_TRUE(said.line.options);
  return said.line.options.value_or(typename decltype(said.line.options)::value_type());
}

/// The one line with which the program refuses a line that is wrong, less its name in front.
/// Expects the hint behind it, and status 2.
template <typename Line>
std::string Complaint(const Said<Line>& said, const std::string& program) {
  EXPECT_FALSE(said.line.options);
  EXPECT_EQ(said.line.status, 2);
  EXPECT_EQ(said.out, "");
  const std::string name = program + ": ";
  const std::string hint = "\nTry '" + program + " --help' for more information.\n";
  if (said.err.size() < name.size() + hint.size()) return "too short: " + said.err;
  const std::size_t size = said.err.size() - hint.size();
  EXPECT_EQ(said.err.substr(size), hint);
  EXPECT_EQ(said.err.compare(0, name.size(), name), 0) << said.err;
  std::string complaint = said.err.substr(name.size(), size - name.size());
  EXPECT_EQ(complaint.find('\n'), std::string::npos) << complaint;
  return complaint;
}

/// What a line prints that only asks something of the program. Expects status 0.
template <typename Line>
std::string AnswerTo(const Said<Line>& said) {
  EXPECT_FALSE(said.line.options);
  EXPECT_EQ(said.line.status, 0);
  EXPECT_EQ(said.err, "");
  return said.out;
}

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_TOOL_SAID_LINE_H_
