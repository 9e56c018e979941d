// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "fuzz/machine.h"

#include <hiredis/hiredis.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "fuzz/arena.h"

namespace {

// The descriptor of a connection to Machine::server: one that hiredis does not close and that no
// other call uses.
constexpr int kServerDescriptor = -1;

Machine* CurrentMachine = nullptr;

// The process's own streams, which libFuzzer reports on.
std::FILE* RealOut = nullptr;
std::FILE* RealErr = nullptr;

ssize_t AppendToText(void* text, const char* bytes, std::size_t size) {
  const AllocateInArena allocate_in_arena(false);  // the text outlives the run
  static_cast<std::string*>(text)->append(bytes, size);
  return static_cast<ssize_t>(size);
}

// A stream that appends to the text. Made once and kept: making one costs more than a short run.
std::FILE* OpenText(std::string* text) {
  const AllocateInArena allocate_in_arena(false);
  // The same number of allocations in every run, or libFuzzer would look for leaks each time.
  text->reserve(std::size_t{1} << 16);
  cookie_io_functions_t functions = {};
  functions.write = AppendToText;
  std::FILE* stream = fopencookie(text, "w", functions);
  if (stream == nullptr) std::abort();
  return stream;
}

std::string OutText;
std::string ErrText;

std::FILE* OpenBytes(const std::string& bytes) {
  // Opened for reading only, so the bytes stay as they are.
  return fmemopen(const_cast<char*>(bytes.data()), bytes.size(), "r");  // NOLINT(*-const-cast)
}

redisContext* Connect(const char* host, const std::string& rest) {
  {
    const AllocateInArena allocate_in_arena(true);
    CurrentMachine->connections.push_back(host + rest);
  }
  redisContext* context = redisConnectFd(kServerDescriptor);
  if (context != nullptr && CurrentMachine->server == nullptr) context->err = REDIS_ERR_IO;
  return context;
}

}  // namespace

OnMachine::OnMachine(Machine* machine) {
  static std::FILE* out_stream = OpenText(&OutText);
  static std::FILE* err_stream = OpenText(&ErrText);
  CurrentMachine = machine;
  OutText.clear();
  ErrText.clear();
  RealOut = stdout;
  RealErr = stderr;
  stdout = out_stream;
  stderr = err_stream;
}

OnMachine::~OnMachine() {
  (void)std::fflush(stdout);
  (void)std::fflush(stderr);
  stdout = RealOut;
  stderr = RealErr;
  CurrentMachine->out = OutText;
  CurrentMachine->err = ErrText;
  CurrentMachine = nullptr;
}

void ReportDifference(const char* what, const std::string& expected, const std::string& found) {
  if (CurrentMachine != nullptr) stderr = RealErr;
  const std::string report = std::string("DIFFERENCE in ") + what + "\n--- expected:\n" + expected +
                             "\n--- found:\n" + found + "\n";
  (void)std::fwrite(report.data(), 1, report.size(), stderr);
  std::abort();
}

void ExpectSame(const char* what, const std::string& expected, const std::string& found) {
  if (expected != found) ReportDifference(what, expected, found);
}

// What --wrap puts in the place of the calls. Outside of a machine, libFuzzer's own calls pass.
extern "C" {

std::FILE* __real_fopen64(const char* path, const char* mode);
std::FILE* __real_popen(const char* command, const char* mode);
int __real_pclose(std::FILE* stream);
int __real_stat64(const char* path, struct stat* status);
ssize_t __real_read(int descriptor, void* buffer, std::size_t size);
ssize_t __real_write(int descriptor, const void* buffer, std::size_t size);

std::FILE* __wrap_fopen64(const char* path, const char* mode) {
  if (CurrentMachine == nullptr) return __real_fopen64(path, mode);
  const AllocateInArena allocate_in_arena(true);
  CurrentMachine->opened_paths.emplace_back(path);
  const auto file = CurrentMachine->files.find(std::string_view(path));
  if (file != CurrentMachine->files.end()) return OpenBytes(file->second);
  errno = ENOENT;
  return nullptr;
}

std::FILE* __wrap_popen(const char* command, const char* mode) {
  if (CurrentMachine == nullptr) return __real_popen(command, mode);
  if (CurrentMachine->pipeline_output) return OpenBytes(*CurrentMachine->pipeline_output);
  errno = EMFILE;
  return nullptr;
}

int __wrap_pclose(std::FILE* stream) {
  return CurrentMachine == nullptr ? __real_pclose(stream) : std::fclose(stream);
}

int __wrap_stat64(const char* path, struct stat* status) {
  if (CurrentMachine == nullptr) return __real_stat64(path, status);
  if (CurrentMachine->files.count(std::string_view(path)) == 0) {
    errno = ENOENT;
    return -1;
  }
  *status = {};
  status->st_mode = S_IFREG;
  return 0;
}

ssize_t __wrap_read(int descriptor, void* buffer, std::size_t size) {
  if (CurrentMachine == nullptr || descriptor != kServerDescriptor) {
    return __real_read(descriptor, buffer, size);
  }
  const AllocateInArena allocate_in_arena(true);
  return static_cast<ssize_t>(CurrentMachine->server->Send(static_cast<char*>(buffer), size));
}

ssize_t __wrap_write(int descriptor, const void* buffer, std::size_t size) {
  if (CurrentMachine == nullptr || descriptor != kServerDescriptor) {
    return __real_write(descriptor, buffer, size);
  }
  const AllocateInArena allocate_in_arena(true);
  if (CurrentMachine->server->Receive({static_cast<const char*>(buffer), size})) {
    return static_cast<ssize_t>(size);
  }
  errno = EPIPE;
  return -1;
}

redisContext* __wrap_redisConnectUnix(const char* path) { return Connect(path, ""); }

redisContext* __wrap_redisConnect(const char* host, int port) {
  return Connect(host, ":" + std::to_string(port));
}

}  // extern "C"
