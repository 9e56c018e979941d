// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Command lines in GNU's style, and what is said of wrong ones.
#ifndef OSTRAFEL_TOOL_COMMAND_LINE_H_
#define OSTRAFEL_TOOL_COMMAND_LINE_H_

#include <getopt.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ostrafel {

/// What comes of a part of the command line: a status to end with, or nothing to go on.
using Step = std::optional<int>;

/// Prints the message, if it has any, with PrintTrouble and then where help is. Gives kTrouble.
Step RefuseLine(const std::string& message);

/// Writes what was asked for (WriteOutput). Gives 0, or kTrouble when that fails.
Step Answer(const std::string& text);

/// Takes an option by what getopt_long returns for it, with its argument, which is empty where it
/// has none.
using TakeOption = std::function<Step(int letter, const std::string& text)>;

/// Gives take the options of the line one after the other, until one ends it; what is wrong with
/// one is told. short_options and long_options are getopt_long's. Appends what is no option to
/// arguments.
Step ReadOptions(int argc, char** argv, const char* short_options, const option* long_options,
                 const TakeOption& take, std::vector<std::string>* arguments);

template <typename Value>
struct Word {
  const char* text;
  Value value;
};

/// Takes one of the words as the argument of the option --name.
template <typename Words, typename Value>
Step TakeWord(const char* name, const Words& words, const std::string& text, Value* value) {
  std::string known;
  for (const auto& word : words) {
    if (text == word.text) {
      *value = word.value;
      return std::nullopt;
    }
    known += std::string(known.empty() ? "" : ", ") + word.text;
  }
  return RefuseLine("--" + std::string(name) + " knows no '" + text + "', only " + known);
}

/// Takes an option that says yes, or no.
inline Step SetFlag(bool* flag, bool value = true) {
  *flag = value;
  return std::nullopt;
}

/// Takes the argument of the option --name, which must not be empty.
template <typename Name>
Step TakeFile(const char* name, const std::string& text, Name* value) {
  if (text.empty()) {
    return RefuseLine("--" + std::string(name) + " needs a name that is not empty");
  }
  *value = text;
  return std::nullopt;
}

}  // namespace ostrafel

#endif  // OSTRAFEL_TOOL_COMMAND_LINE_H_
