// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <set>
#include <stdexcept>

namespace {

struct PipeEnds {
  int read = -1;
  int write = -1;
};

PipeEnds MakePipe() {
  std::array<int, 2> ends = {};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
  return {ends[0], ends[1]};
}

// Texts as execve takes them; they must stay where they are.
std::vector<char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> EnvironmentWith(
    const std::vector<std::pair<std::string, std::string>>& variables) {
  std::vector<std::string> environment;
  std::set<std::string> names;
  for (const auto& [name, value] : variables) {
    environment.push_back(name + "=" + value);
    names.insert(name);
  }
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    if (names.count(text.substr(0, text.find('='))) == 0) environment.push_back(text);
  }
  return environment;
}

[[noreturn]] void BecomeProgram(char* const* argv, char* const* environment, int out, int err,
                                const RunOptions& options) {
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  (void)dup2(nothing, STDIN_FILENO);
  (void)dup2(out, STDOUT_FILENO);
  (void)dup2(err, STDERR_FILENO);
  // Whoever runs the tests may ignore some, as nohup does.
  for (const int number : {SIGHUP, SIGINT, SIGTERM, SIGPIPE}) (void)signal(number, SIG_DFL);
  if (options.in_child != nullptr) options.in_child();
  (void)execve(argv[0], argv, environment);
  _exit(127);
}

// Reads both pipes until the program has closed them. Returns false when that takes too long.
bool Collect(int out, int err, std::chrono::seconds time_limit, Finished* finished) {
  std::array<pollfd, 2> waits = {pollfd{out, POLLIN, 0}, pollfd{err, POLLIN, 0}};
  std::array<std::string*, 2> texts = {&finished->out, &finished->err};
  const auto deadline = std::chrono::steady_clock::now() + time_limit;
  std::array<char, 4096> buffer = {};
  while (waits[0].fd >= 0 || waits[1].fd >= 0) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    (void)poll(waits.data(), waits.size(), 1000);
    for (std::size_t i = 0; i < waits.size(); ++i) {
      if (waits[i].fd < 0 || waits[i].revents == 0) continue;
      const ssize_t size = read(waits[i].fd, buffer.data(), buffer.size());
      if (size > 0) {
        texts[i]->append(buffer.data(), static_cast<std::size_t>(size));
      } else if (size == 0 || errno != EINTR) {
        waits[i].fd = -1;
      }
    }
  }
  return true;
}

}  // namespace

Finished RunProgram(const std::vector<std::string>& arguments, const RunOptions& options) {
  const std::vector<char*> argv = Pointers(arguments);
  const std::vector<std::string> variables = EnvironmentWith(options.environment);
  const std::vector<char*> environment = Pointers(variables);
  const PipeEnds out = MakePipe();
  const PipeEnds err = MakePipe();
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("cannot fork");
  if (child == 0) BecomeProgram(argv.data(), environment.data(), out.write, err.write, options);
  (void)close(out.write);
  (void)close(err.write);
  if (options.on_start) options.on_start(child);

  Finished finished;
  if (!Collect(out.read, err.read, options.time_limit, &finished)) {
    finished.err += "(killed by the test: it did not end)\n";
    (void)kill(child, SIGKILL);
  }
  (void)close(out.read);
  (void)close(err.read);
  int status = 0;
  (void)waitpid(child, &status, 0);
  finished.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return finished;
}
