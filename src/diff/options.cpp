// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/options.h"

#include <array>
#include <cerrno>
#include <cstdlib>

#include "diff/usage.h"
#include "live/server_options.h"
#include "tool/command_line.h"

namespace ostrafel {

namespace {

// What getopt_long returns for options that have no short form.
enum LongOption {
  kUpdate = 256,
  kAgainst,
  kApply,
  kBatch,
  kSocket,
  kTcp,
  kPasswordFile,
  kWww,
  kIgnore,
  kNoExtra,
  kFormat,
  kStat,
  kColor,
  kVersion,
};

constexpr std::array<option, 17> kOptions = {{
    {"update", no_argument, nullptr, kUpdate},
    {"against", required_argument, nullptr, kAgainst},
    {"apply", no_argument, nullptr, kApply},
    {"batch", required_argument, nullptr, kBatch},
    {"socket", required_argument, nullptr, kSocket},
    {"tcp", required_argument, nullptr, kTcp},
    {"password-file", required_argument, nullptr, kPasswordFile},
    {"www", required_argument, nullptr, kWww},
    {"ignore", required_argument, nullptr, kIgnore},
    {"no-extra", no_argument, nullptr, kNoExtra},
    {"format", required_argument, nullptr, kFormat},
    {"stat", no_argument, nullptr, kStat},
    {"color", required_argument, nullptr, kColor},
    {"quiet", no_argument, nullptr, 'q'},
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, kVersion},
    {nullptr, 0, nullptr, 0},
}};

constexpr std::array<Word<DiffFormat>, 2> kFormats = {
    {{"text", DiffFormat::kText}, {"json", DiffFormat::kJson}}};

// What the line has said so far.
struct State {
  DiffOptions options;
  ServerOptions server;
};

Step TakeBatch(const std::string& text, std::optional<std::size_t>* batch) {
  const bool is_number = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
  errno = 0;
  const unsigned long number = is_number ? std::strtoul(text.c_str(), nullptr, 10) : 0;
  if (number == 0 || errno == ERANGE) {
    return RefuseLine("--batch needs a number of resources from 1 on, not '" + text + "'");
  }
  *batch = number;
  return std::nullopt;
}

Step TakePattern(const std::string& text, std::vector<std::string>* patterns) {
  if (text.empty()) return RefuseLine("--ignore needs a pattern that is not empty");
  patterns->push_back(text);
  return std::nullopt;
}

Step TakeLetter(int letter, const std::string& text, State* state) {
  DiffOptions& options = state->options;
  switch (letter) {
    case kUpdate:
      return SetFlag(&options.is_update);
    case kAgainst:
      return TakeFile("against", text, &options.against);
    case kApply:
      return SetFlag(&options.apply);
    case kBatch:
      return TakeBatch(text, &options.batch);
    case kSocket:
      return TakeSocket(text, &state->server);
    case kTcp:
      return TakeEndpoint(text, &state->server);
    case kPasswordFile:
      return TakePasswordFile(text, &state->server);
    case kWww:
      return TakeIncludeFolder(text, &options);
    case kIgnore:
      return TakePattern(text, &options.ignored);
    case kNoExtra:
      return SetFlag(&options.has_extra, false);
    case kFormat:
      return TakeWord("format", kFormats, text, &options.format);
    case kStat:
      return SetFlag(&options.is_stat);
    case kColor:
      return TakeColor(text, &options.color);
    case 'q':
      return SetFlag(&options.quiet);
    case kVersion:
      return Answer(DiffVersionText());
    default:  // 'h'
      return Answer(DiffHelpText());
  }
}

// Refuses options that contradict each other.
Step CheckTogether(const State& state) {
  const DiffOptions& options = state.options;
  if (const Step step = CheckServer(state.server)) return step;
  if (options.against && HasServer(state.server)) return RefuseLine("--against needs no server");
  if (options.against && options.apply) {
    return RefuseLine("--apply needs a server, not another tree");
  }
  if (options.batch && !options.apply) return RefuseLine("--batch is for --apply");
  if (options.is_stat && options.format != DiffFormat::kText) {
    return RefuseLine("--stat is text");
  }
  return std::nullopt;
}

}  // namespace

DiffCommandLine ParseDiffCommandLine(int argc, char** argv) {
  State state;
  std::vector<std::string> arguments;
  const auto take = [&](int letter, const std::string& text) {
    return TakeLetter(letter, text, &state);
  };
  Step step = ReadOptions(argc, argv, "hq", kOptions.data(), take, &arguments);
  if (!step) step = TakeTreeArguments(arguments, 2, &state.options);
  if (!step) step = CheckTogether(state);
  if (step) return {std::nullopt, *step};
  state.options.server = FinishServer(state.server);
  return {state.options, 0};
}

}  // namespace ostrafel
