// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Owners of the C libraries' handles: every handle is released exactly once, on every path.
#ifndef OSTRAFEL_HANDLES_H_
#define OSTRAFEL_HANDLES_H_

#include <dirent.h>
#include <hiredis/hiredis.h>
#include <jansson.h>

#include <cstdio>
#include <memory>

struct ReplyDeleter {
  void operator()(redisReply* reply) const { freeReplyObject(reply); }
};
/// A reply of the server; empty when none was received.
using Reply = std::unique_ptr<redisReply, ReplyDeleter>;

struct DocumentDeleter {
  void operator()(json_t* value) const { json_decref(value); }
};
/// One counted reference to a JSON value.
using Document = std::unique_ptr<json_t, DocumentDeleter>;

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

#endif  // OSTRAFEL_HANDLES_H_
