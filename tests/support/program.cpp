#include "support/program.h"

#include <cstdlib>
#include <iterator>
#include <sstream>

namespace {

std::string FromEnvironment(const char* name, const std::string& otherwise) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : otherwise;
}

}  // namespace

std::vector<std::string> ProgramCommand(const std::vector<std::string>& arguments) {
  std::istringstream launcher(FromEnvironment("OSTRAFEL_LAUNCHER", ""));
  std::vector<std::string> command(std::istream_iterator<std::string>(launcher), {});
  command.push_back(FromEnvironment("OSTRAFEL_PROGRAM", OSTRAFEL_PROGRAM_PATH));
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

bool HasLauncher() { return !FromEnvironment("OSTRAFEL_LAUNCHER", "").empty(); }
