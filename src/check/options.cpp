// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/options.h"

#include <getopt.h>

#include <array>
#include <cstddef>

#include "base/message.h"
#include "check/output.h"
#include "check/rule_choice.h"
#include "check/rule_texts.h"
#include "check/usage.h"

namespace ostrafel {

namespace {

constexpr int kTrouble = 2;

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

template <typename Value>
struct Word {
  const char* text;
  Value value;
};

constexpr std::array<Word<Format>, 4> kFormats = {{{"text", Format::kText},
                                                   {"json", Format::kJson},
                                                   {"sarif", Format::kSarif},
                                                   {"github", Format::kGithub}}};
constexpr std::array<Word<Color>, 3> kColors = {
    {{"auto", Color::kAuto}, {"always", Color::kAlways}, {"never", Color::kNever}}};
constexpr std::array<Word<Level>, 3> kLevels = {
    {{"error", Level::kError}, {"warning", Level::kWarning}, {"note", Level::kNote}}};

// What the line has said so far.
struct State {
  CheckOptions options;
  std::optional<std::vector<bool>> selected;  // instead of the default rules
  std::vector<bool> ignored = std::vector<bool>(Rules().size());
};

// A status to end with, or nothing to go on.
using Step = std::optional<int>;

Step Refuse() {
  PrintMessage("Try 'ostrafel-check --help' for more information.\n");
  return kTrouble;
}

Step Answer(const std::string& text) { return WriteOutput(text) ? 0 : kTrouble; }

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
  PrintMessage("ostrafel-check: --%s knows no '%s', only %s\n", name, text.c_str(), known.c_str());
  return Refuse();
}

template <typename Name>
Step TakeName(const char* name, const std::string& text, Name* value) {
  if (text.empty()) {
    PrintMessage("ostrafel-check: --%s needs a name that is not empty\n", name);
    return Refuse();
  }
  *value = text;
  return std::nullopt;
}

Step TakeFolder(const char* name, const std::string& text, std::string* folder) {
  const Step step = TakeName(name, text, folder);
  if (!step && folder->back() != '/') *folder += '/';
  return step;
}

Step TakeRules(const char* name, const std::string& list, std::vector<bool>* chosen) {
  const std::optional<std::string> unknown = ChooseRules(list, chosen);
  if (!unknown) return std::nullopt;
  PrintMessage("ostrafel-check: --%s: '%s' is no rule, and no rule's name begins so\n", name,
               unknown->c_str());
  return Refuse();
}

Step Explain(const std::string& name) {
  if (const Rule* rule = FindRule(name)) return Answer(RuleExplanation(*rule));
  PrintMessage("ostrafel-check: --explain: '%s' is no rule; --list-rules names them\n",
               name.c_str());
  return Refuse();
}

// The options that only set something; text is empty for those without an argument.
Step TakeSetting(int letter, const std::string& text, State* state) {
  CheckOptions& options = state->options;
  switch (letter) {
    case kWww:
      return TakeFolder("www", text, &options.www);
    case kSelect:
      if (!state->selected) state->selected.emplace(Rules().size());
      return TakeRules("select", text, &*state->selected);
    case kIgnore:
      return TakeRules("ignore", text, &state->ignored);
    case kBaseline:
      return TakeName("baseline", text, &options.baseline);
    case kWriteBaseline:
      return TakeName("write-baseline", text, &options.write_baseline);
    case kFailOn:
      return TakeWord("fail-on", kLevels, text, &options.fail_on);
    case kFormat:
      return TakeWord("format", kFormats, text, &options.format);
    case kColor:
      return TakeWord("color", kColors, text, &options.color);
    case kPrintStore:
      options.print_store = true;
      return std::nullopt;
    case 'q':
      options.quiet = true;
      return std::nullopt;
    default:
      return Refuse();  // getopt_long has said what is wrong
  }
}

Step TakeOption(int letter, const std::string& text, State* state) {
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

Step TakeArguments(const std::vector<std::string>& arguments, CheckOptions* options) {
  if (arguments.empty()) {
    PrintMessage("ostrafel-check: no StaticDataPath is given\n");
    return Refuse();
  }
  if (arguments.size() > 3) {
    PrintMessage("ostrafel-check: one argument too many: '%s'\n", arguments[3].c_str());
    return Refuse();
  }
  if (arguments[0].empty() || (arguments.size() > 1 && arguments[1].empty())) {
    PrintMessage("ostrafel-check: StaticDataPath and URI must not be empty\n");
    return Refuse();
  }
  options->static_data_path = arguments[0];
  if (arguments.size() > 1) options->uri = arguments[1];
  if (arguments.size() > 2 && !arguments[2].empty()) options->file_name = arguments[2];
  return std::nullopt;
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
  // getopt_long names the program in its messages as the first word does, which may be a path.
  std::string name = "ostrafel-check";
  std::vector<char*> words = {name.data()};
  for (int i = 1; i < argc; ++i) words.push_back(argv[i]);
  const int count = static_cast<int>(words.size());
  words.push_back(nullptr);
  State state;
  optind = 0;  // begins afresh
  for (int letter = 0; letter != -1;) {
    letter = getopt_long(count, words.data(), "hq", kOptions.data(), nullptr);
    if (letter == -1) break;
    const Step step = TakeOption(letter, optarg == nullptr ? "" : optarg, &state);
    if (step) return {std::nullopt, *step};
  }
  const std::vector<std::string> arguments(words.begin() + optind, words.end() - 1);
  const Step step = TakeArguments(arguments, &state.options);
  if (step) return {std::nullopt, *step};
  state.options.is_on = RulesThatAreOn(state);
  return {state.options, 0};
}

}  // namespace ostrafel
