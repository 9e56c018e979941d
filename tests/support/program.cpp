// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/program.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace {

std::string FromEnvironment(const char* name, const std::string& otherwise) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : otherwise;
}

std::string Launcher() { return FromEnvironment("OSTRAFEL_LAUNCHER", OSTRAFEL_EMULATOR); }

std::string Program() { return FromEnvironment("OSTRAFEL_PROGRAM", OSTRAFEL_PROGRAM_PATH); }

}  // namespace

std::vector<std::string> CommandOf(const std::string& program,
                                   const std::vector<std::string>& arguments) {
  std::istringstream launcher(Launcher());
  std::vector<std::string> command(std::istream_iterator<std::string>(launcher), {});
  command.push_back(program);
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

std::vector<std::string> ProgramCommand(const std::vector<std::string>& arguments) {
  return CommandOf(Program(), arguments);
}

bool HasLauncher() { return !Launcher().empty(); }

bool ProgramHas64Bits() {
  // The class of an ELF file: 1 for 32 bits, 2 for 64.
  std::ifstream file(Program(), std::ios::binary);
  std::array<char, 5> start = {};
  if (!file.read(start.data(), start.size())) throw std::runtime_error("cannot read " + Program());
  return start[4] == 2;
}
