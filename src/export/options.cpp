// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/options.h"

#include <array>
#include <vector>

#include "export/usage.h"
#include "live/server_options.h"
#include "tool/command_line.h"

namespace ostrafel {

namespace {

// What getopt_long returns for options that have no short form.
enum LongOption {
  kForce = 256,
  kPrint,
  kWindowsNames,
  kWww,
  kSocket,
  kTcp,
  kPasswordFile,
  kVersion,
};

constexpr std::array<option, 11> kOptions = {{
    {"force", no_argument, nullptr, kForce},
    {"print", no_argument, nullptr, kPrint},
    {"windows-names", no_argument, nullptr, kWindowsNames},
    {"www", required_argument, nullptr, kWww},
    {"socket", required_argument, nullptr, kSocket},
    {"tcp", required_argument, nullptr, kTcp},
    {"password-file", required_argument, nullptr, kPasswordFile},
    {"quiet", no_argument, nullptr, 'q'},
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, kVersion},
    {nullptr, 0, nullptr, 0},
}};

// What the line has said so far.
struct State {
  ExportOptions options;
  ServerOptions server;
};

Step TakeLetter(int letter, const std::string& text, State* state) {
  ExportOptions& options = state->options;
  switch (letter) {
    case kForce:
      return SetFlag(&options.is_forced);
    case kPrint:
      return SetFlag(&options.prints);
    case kWindowsNames:
      return SetFlag(&options.windows_names);
    case kWww:
      return TakeIncludeFolder(text, &options);
    case kSocket:
      return TakeSocket(text, &state->server);
    case kTcp:
      return TakeEndpoint(text, &state->server);
    case kPasswordFile:
      return TakePasswordFile(text, &state->server);
    case 'q':
      return SetFlag(&options.quiet);
    case kVersion:
      return Answer(ExportVersionText());
    default:  // 'h'
      return Answer(ExportHelpText());
  }
}

Step TakeArguments(const std::vector<std::string>& arguments, ExportOptions* options) {
  const std::size_t wanted = options->prints ? 1 : 2;
  if (arguments.empty()) return RefuseLine("no URI is given");
  if (arguments.size() < wanted) return RefuseLine("no Directory is given");
  if (arguments.size() > wanted) {
    return RefuseLine("one argument too many: '" + arguments[wanted] + "'");
  }
  for (const std::string& argument : arguments) {
    if (argument.empty()) return RefuseLine("URI and Directory must not be empty");
  }
  options->uri = arguments[0];
  if (!options->prints) options->static_data_path = arguments[1];
  return std::nullopt;
}

// Refuses options that contradict each other.
Step CheckTogether(const State& state) {
  const ExportOptions& options = state.options;
  if (options.prints && (options.is_forced || options.windows_names || !options.www.empty())) {
    return RefuseLine(
        "--print writes no files, so that --force, --windows-names and --www are "
        "for nothing");
  }
  return CheckServer(state.server);
}

}  // namespace

ExportCommandLine ParseExportCommandLine(int argc, char** argv) {
  State state;
  std::vector<std::string> arguments;
  const auto take = [&](int letter, const std::string& text) {
    return TakeLetter(letter, text, &state);
  };
  Step step = ReadOptions(argc, argv, "hq", kOptions.data(), take, &arguments);
  if (!step) step = TakeArguments(arguments, &state.options);
  if (!step) step = CheckTogether(state);
  if (step) return {std::nullopt, *step};
  state.options.server = FinishServer(state.server);
  return {state.options, 0};
}

}  // namespace ostrafel
