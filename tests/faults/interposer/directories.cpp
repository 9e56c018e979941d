// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Directories and what is in them. A program has one of the forms of each call, according to the
// sizes of file numbers and times that it is built with.
#include <dirent.h>
#include <sys/stat.h>

#include "faults/interposer/next.h"
#include "faults/interposer/plan.h"

extern "C" {

DIR* opendir(const char* path) {
  static auto* const next = failing_calls::Next<DIR*(const char*)>("opendir");
  return failing_calls::Fails(failing_calls::kOpendir) ? nullptr : next(path);
}

dirent* readdir(DIR* directory) {
  static auto* const next = failing_calls::Next<dirent*(DIR*)>("readdir");
  return failing_calls::Fails(failing_calls::kReaddir) ? nullptr : next(directory);
}

dirent64* readdir64(DIR* directory) {
  static auto* const next = failing_calls::Next<dirent64*(DIR*)>("readdir64");
  return failing_calls::Fails(failing_calls::kReaddir) ? nullptr : next(directory);
}

int stat(const char* path, struct stat* status) noexcept {
  static auto* const next = failing_calls::Next<int(const char*, struct stat*)>("stat");
  return failing_calls::Fails(failing_calls::kStat) ? -1 : next(path, status);
}

int stat64(const char* path, struct stat64* status) noexcept {
  static auto* const next = failing_calls::Next<int(const char*, struct stat64*)>("stat64");
  return failing_calls::Fails(failing_calls::kStat) ? -1 : next(path, status);
}

// 32-bit programs with 64-bit times; no header declares it.
int __stat64_time64(const char* path, void* status) noexcept {
  static auto* const next = failing_calls::Next<int(const char*, void*)>("__stat64_time64");
  return failing_calls::Fails(failing_calls::kStat) ? -1 : next(path, status);
}

}  // extern "C"
