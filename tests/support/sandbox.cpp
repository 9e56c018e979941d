#include "support/sandbox.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

std::string FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr) throw std::runtime_error(std::string(name) + " is not set");
  return value;
}

}  // namespace

std::string ServerSocket() { return FromEnvironment("OSTRAFEL_SANDBOX_SOCKET"); }

bool HasOwnNetwork() { return FromEnvironment("OSTRAFEL_SANDBOX") != "real"; }

std::string RuntimeDirectory() { return FromEnvironment("OSTRAFEL_SANDBOX_RUNTIME"); }

std::string ReadFile(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::optional<std::string>& content) {
  std::filesystem::remove(path);
  if (!content) return;
  std::ofstream stream(path, std::ios::binary);
  stream << *content;
  if (!stream.flush()) throw std::runtime_error("cannot write " + path);
}

void Publish(const RuntimeFiles& files) {
  WriteFile(RuntimeDirectory() + "/redis.port", files.port);
  WriteFile(RuntimeDirectory() + "/redis.unixsocket", files.unixsocket);
  WriteFile(RuntimeDirectory() + "/redis.requirepass", files.requirepass);
}
