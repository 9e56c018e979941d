// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Files: opening and closing them, and reading and writing them through stdio.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>

#include "faults/interposer/next.h"
#include "faults/interposer/plan.h"

namespace {

// The mode is there only when a file may be made; otherwise what is read here is not used.
mode_t Mode(int flags, std::va_list arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

// What a failed read leaves for ferror.
void SetErrorIndicator(std::FILE* stream) { stream->_flags |= _IO_ERR_SEEN; }

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = Mode(flags, arguments);
  va_end(arguments);
  static auto* const next = failing_calls::Next<int(const char*, int, ...)>("open");
  return failing_calls::Fails(failing_calls::kOpen) ? -1 : next(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = Mode(flags, arguments);
  va_end(arguments);
  static auto* const next = failing_calls::Next<int(const char*, int, ...)>("open64");
  return failing_calls::Fails(failing_calls::kOpen) ? -1 : next(path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = Mode(flags, arguments);
  va_end(arguments);
  static auto* const next = failing_calls::Next<int(int, const char*, int, ...)>("openat");
  return failing_calls::Fails(failing_calls::kOpen) ? -1 : next(directory, path, flags, mode);
}

int openat64(int directory, const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = Mode(flags, arguments);
  va_end(arguments);
  static auto* const next = failing_calls::Next<int(int, const char*, int, ...)>("openat64");
  return failing_calls::Fails(failing_calls::kOpen) ? -1 : next(directory, path, flags, mode);
}

int close(int file) {
  static auto* const next = failing_calls::Next<int(int)>("close");
  const bool fails = failing_calls::Fails(failing_calls::kClose);
  const int error = errno;
  const int status = next(file);
  if (!fails) return status;
  errno = error;
  return -1;
}

std::FILE* fopen(const char* path, const char* mode) {
  static auto* const next = failing_calls::Next<std::FILE*(const char*, const char*)>("fopen");
  return failing_calls::Fails(failing_calls::kFopen) ? nullptr : next(path, mode);
}

std::FILE* fopen64(const char* path, const char* mode) {
  static auto* const next = failing_calls::Next<std::FILE*(const char*, const char*)>("fopen64");
  return failing_calls::Fails(failing_calls::kFopen) ? nullptr : next(path, mode);
}

std::size_t fread(void* items, std::size_t size, std::size_t count, std::FILE* stream) {
  using Function = std::size_t(void*, std::size_t, std::size_t, std::FILE*);
  static auto* const next = failing_calls::Next<Function>("fread");
  if (!failing_calls::Fails(failing_calls::kFread)) return next(items, size, count, stream);
  SetErrorIndicator(stream);
  return 0;
}

char* fgets(char* line, int size, std::FILE* stream) {
  static auto* const next = failing_calls::Next<char*(char*, int, std::FILE*)>("fgets");
  if (!failing_calls::Fails(failing_calls::kFgets)) return next(line, size, stream);
  SetErrorIndicator(stream);
  return nullptr;
}

int fgetc(std::FILE* stream) {
  static auto* const next = failing_calls::Next<int(std::FILE*)>("fgetc");
  if (!failing_calls::Fails(failing_calls::kFgetc)) return next(stream);
  SetErrorIndicator(stream);
  return EOF;
}

int puts(const char* text) {
  static auto* const next = failing_calls::Next<int(const char*)>("puts");
  return failing_calls::Fails(failing_calls::kPuts) ? EOF : next(text);
}

}  // extern "C"
