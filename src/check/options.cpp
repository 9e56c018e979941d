// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/options.h"

#include <getopt.h>

#include <array>

#include "check/rule_choice.h"
#include "check/rule_texts.h"
#include "check/usage.h"
#include "tool/command_line.h"

namespace ostrafel {

namespace {

// What getopt_long returns for options that have no short form.
enum LongOption {
  kWww = 256,
  kSelect,
  kIgnore,
  kBaseline,
  kWriteBaseline,
  kFailOn,
  kFormat,
  kColor,
  kPrintStore,
  kListRules,
  kExplain,
  kVersion,
};

constexpr std::array<option, 15> kOptions = {{
    {"www", required_argument, nullptr, kWww},
    {"select", required_argument, nullptr, kSelect},
    {"ignore", required_argument, nullptr, kIgnore},
    {"baseline", required_argument, nullptr, kBaseline},
    {"write-baseline", required_argument, nullptr, kWriteBaseline},
    {"fail-on", required_argument, nullptr, kFailOn},
    {"format", required_argument, nullptr, kFormat},
    {"color", required_argument, nullptr, kColor},
    {"quiet", no_argument, nullptr, 'q'},
    {"print-store", no_argument, nullptr, kPrintStore},
    {"list-rules", no_argument, nullptr, kListRules},
    {"explain", required_argument, nullptr, kExplain},
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, kVersion},
    {nullptr, 0, nullptr, 0},
}};

constexpr std::array<Word<Format>, 4> kFormats = {{{"text", Format::kText},
                                                   {"json", Format::kJson},
                                                   {"sarif", Format::kSarif},
                                                   {"github", Format::kGithub}}};
constexpr std::array<Word<Level>, 3> kLevels = {
    {{"error", Level::kError}, {"warning", Level::kWarning}, {"note", Level::kNote}}};

// What the line has said so far.
struct State {
  CheckOptions options;
  std::optional<std::vector<bool>> selected;  // instead of the default rules
  std::vector<bool> ignored = std::vector<bool>(Rules().size());
};

Step TakeRules(const char* name, const std::string& list, std::vector<bool>* chosen) {
  const std::optional<std::string> unknown = ChooseRules(list, chosen);
  if (!unknown) return std::nullopt;
  return RefuseLine("--" + std::string(name) + ": '" + *unknown +
                    "' is no rule, and no rule's name begins so");
}

Step Explain(const std::string& name) {
  if (const Rule* rule = FindRule(name)) return Answer(RuleExplanation(*rule));
  return RefuseLine("--explain: '" + name + "' is no rule; --list-rules names them");
}

// The options that only set something; text is empty for those without an argument.
Step TakeSetting(int letter, const std::string& text, State* state) {
  CheckOptions& options = state->options;
  switch (letter) {
    case kWww:
      return TakeIncludeFolder(text, &options);
    case kSelect:
      if (!state->selected) state->selected.emplace(Rules().size());
      return TakeRules("select", text, &*state->selected);
    case kIgnore:
      return TakeRules("ignore", text, &state->ignored);
    case kBaseline:
      return TakeFile("baseline", text, &options.baseline);
    case kWriteBaseline:
      return TakeFile("write-baseline", text, &options.write_baseline);
    case kFailOn:
      return TakeWord("fail-on", kLevels, text, &options.fail_on);
    case kFormat:
      return TakeWord("format", kFormats, text, &options.format);
    case kColor:
      return TakeColor(text, &options.color);
    case kPrintStore:
      return SetFlag(&options.print_store);
    default:  // 'q'
      return SetFlag(&options.quiet);
  }
}

Step TakeLetter(int letter, const std::string& text, State* state) {
  switch (letter) {
    case kListRules:
      return Answer(RuleList());
    case kExplain:
      return Explain(text);
    case 'h':
      return Answer(HelpText());
    case kVersion:
      return Answer(VersionText());
    default:
      return TakeSetting(letter, text, state);
  }
}

std::vector<bool> RulesThatAreOn(const State& state) {
  std::vector<bool> is_on = state.selected.value_or(DefaultRules());
  for (std::size_t i = 0; i < is_on.size(); ++i) {
    if (state.ignored[i]) is_on[i] = false;
  }
  return is_on;
}

}  // namespace

CommandLine ParseCommandLine(int argc, char** argv) {
  State state;
  std::vector<std::string> arguments;
  const auto take = [&](int letter, const std::string& text) {
    return TakeLetter(letter, text, &state);
  };
  Step step = ReadOptions(argc, argv, "hq", kOptions.data(), take, &arguments);
  if (!step) step = TakeTreeArguments(arguments, 1, &state.options);
  if (step) return {std::nullopt, *step};
  state.options.is_on = RulesThatAreOn(state);
  return {state.options, 0};
}

}  // namespace ostrafel
