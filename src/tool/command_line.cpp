// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/command_line.h"

#include "base/message.h"
#include "tool/output.h"
#include "tool/tool.h"

namespace ostrafel {

Step RefuseLine(const std::string& message) {
  if (!message.empty()) PrintTrouble(message);
  PrintMessage("Try '%s --help' for more information.\n", ToolName);
  return kTrouble;
}

Step Answer(const std::string& text) { return WriteOutput(text) ? 0 : kTrouble; }

Step ReadOptions(int argc, char** argv, const char* short_options, const option* long_options,
                 const TakeOption& take, std::vector<std::string>* arguments) {
  // getopt_long names the program in its messages as the first word does, which may be a path.
  std::string name = ToolName;
  std::vector<char*> words = {name.data()};
  for (int i = 1; i < argc; ++i) words.push_back(argv[i]);
  const int count = static_cast<int>(words.size());
  words.push_back(nullptr);
  optind = 0;  // begins afresh
  for (;;) {
    const int letter = getopt_long(count, words.data(), short_options, long_options, nullptr);
    if (letter == -1) break;
    if (letter == '?') return RefuseLine("");  // getopt_long has said what is wrong
    const Step step = take(letter, optarg == nullptr ? "" : optarg);
    if (step) return step;
  }
  arguments->insert(arguments->end(), words.begin() + optind, words.end() - 1);
  return std::nullopt;
}

}  // namespace ostrafel
