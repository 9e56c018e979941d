// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Owners of POSIX handles: each handle is released exactly once, on every path.
#ifndef OSTRAFEL_BASE_FILES_H_
#define OSTRAFEL_BASE_FILES_H_

#include <dirent.h>

#include <cstdio>
#include <memory>

namespace ostrafel {

struct FileDeleter {
  void operator()(std::FILE* file) const { (void)std::fclose(file); }
};
/// A file opened with fopen.
using File = std::unique_ptr<std::FILE, FileDeleter>;

struct PipeDeleter {
  void operator()(std::FILE* pipe) const { (void)pclose(pipe); }
};
/// A command started with popen; releasing it waits for the command's end, so no zombie stays.
using Pipe = std::unique_ptr<std::FILE, PipeDeleter>;

struct DirectoryDeleter {
  void operator()(DIR* directory) const { (void)closedir(directory); }
};
/// A directory opened with opendir.
using Directory = std::unique_ptr<DIR, DirectoryDeleter>;

}  // namespace ostrafel

#endif  // OSTRAFEL_BASE_FILES_H_
