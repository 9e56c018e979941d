// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/tree_output.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "base/files.h"
#include "export/folders.h"

namespace ostrafel {

namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

[[noreturn]] void Fail(const std::string& path, int error) {
  throw std::runtime_error(path + ": " + std::strerror(error));
}

// The names in a folder but "." and "..".
std::vector<std::string> NamesIn(int folder, const std::string& path) {
  // Opened again, for a place in the listing of its own.
  const int own = openat(folder, ".", kFolderFlags);
  if (own < 0) Fail(path, errno);
  const Directory listing(fdopendir(own));
  if (listing == nullptr) {
    close(own);
    Fail(path, ENOMEM);
  }
  std::vector<std::string> names;
  errno = 0;
  while (const dirent* entry = readdir(listing.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
    errno = 0;
  }
  if (errno != 0) Fail(path, errno);
  return names;
}

// Makes the folder and those that it is in, below the open one.
void MakeFolders(int top, const std::string& folder, const std::string& shown) {
  if (folder.empty() || mkdirat(top, folder.c_str(), 0777) == 0 || errno == EEXIST) return;
  if (errno != ENOENT) Fail(shown + "/" + folder, errno);
  const std::size_t slash = folder.rfind('/');
  if (slash == std::string::npos) Fail(shown + "/" + folder, ENOENT);
  MakeFolders(top, folder.substr(0, slash), shown);
  if (mkdirat(top, folder.c_str(), 0777) != 0 && errno != EEXIST) Fail(shown + "/" + folder, errno);
}

void WriteWhole(int file, const std::string& text, const std::string& path) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = write(file, text.data() + written, text.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) Fail(path, errno);
    written += static_cast<std::size_t>(count);
  }
}

// The path of a name, or of a path, in another one, which may be empty.
std::string Joined(const std::string& above, const std::string& name) {
  return above.empty() ? name : above + "/" + name;
}

std::string FileIn(const std::string& folder) { return Joined(folder, kDocumentName); }

// Tells of all that is below the open folder, of a folder before what is in it; of no folder by way
// of a link. What goes meanwhile is left out. Few folders are open at a time, however deep it goes.
template <typename Take>
void Walk(int top, const std::string& shown, const Take& take) {
  std::vector<std::string> rest = {""};
  while (!rest.empty()) {
    const std::string folder = std::move(rest.back());
    rest.pop_back();
    const Descriptor open_folder(
        openat(top, folder.empty() ? "." : folder.c_str(), kFolderFlags | O_NOFOLLOW));
    if (open_folder.Number() < 0 && errno == ENOENT) continue;
    if (open_folder.Number() < 0) Fail(Joined(shown, folder), errno);
    for (const std::string& name : NamesIn(open_folder.Number(), Joined(shown, folder))) {
      const std::string path = Joined(folder, name);
      struct stat status = {};
      if (fstatat(open_folder.Number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT) continue;
        Fail(Joined(shown, path), errno);
      }
      take(path, status.st_mode);
      if (S_ISDIR(status.st_mode)) rest.push_back(path);
    }
  }
}

[[noreturn]] void RefuseLink(const std::string& path) {
  throw std::runtime_error(path + ": is a symbolic link, which is not followed");
}

// The path without the slashes that end it, so that names can be put behind it.
std::string WithoutLastSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path == "/" ? "/." : path;
}

}  // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(number_, other.number_);
  return *this;
}

Descriptor::~Descriptor() {
  if (number_ >= 0) (void)close(number_);
}

bool Descriptor::Close() { return close(std::exchange(number_, -1)) == 0; }

TreeOutput::TreeOutput(std::string directory, bool is_forced)
    : directory_(WithoutLastSlashes(std::move(directory))), is_forced_(is_forced) {
  if (mkdir(directory_.c_str(), 0777) == 0) {
    is_made_ = true;
  } else if (errno != EEXIST) {
    Fail(directory_, errno);
  }
  try {
    Open();
  } catch (const std::exception&) {
    if (is_made_) (void)rmdir(directory_.c_str());
    throw;
  }
}

void TreeOutput::Open() {
  top_ = Descriptor(open(directory_.c_str(), kFolderFlags));
  if (top_.Number() < 0) Fail(directory_, errno);
  // Not every file system knows locks.
  if (flock(top_.Number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    throw std::runtime_error(directory_ + ": another export writes into it");
  }
  if (is_forced_) return;
  const std::vector<std::string> names = NamesIn(top_.Number(), directory_);
  if (names.empty()) return;
  throw std::runtime_error(directory_ + ": is not empty, it holds " +
                           *std::min_element(names.begin(), names.end()) +
                           "; --force writes into it all the same");
}

TreeOutput::~TreeOutput() {
  RemoveScratch();
  if (is_made_ && !is_done_) (void)rmdir(directory_.c_str());
}

void TreeOutput::Begin() {
  RemoveScratch();
  folders_.clear();
  std::string name = directory_ + "/.ostrafel-export-XXXXXX";
  // With all the memory that it needs: once the folder is there, its name must be known.
  std::string scratch_name = name.substr(directory_.size() + 1);
  if (mkdtemp(name.data()) == nullptr) Fail(directory_, errno);
  scratch_name.assign(name, directory_.size() + 1, std::string::npos);
  scratch_name_ = std::move(scratch_name);
  scratch_ = Descriptor(openat(top_.Number(), scratch_name_.c_str(), kFolderFlags | O_NOFOLLOW));
  if (scratch_.Number() < 0) Fail(name, errno);
}

void TreeOutput::Write(const std::string& folder, const std::string& text) {
  const std::string path = FileIn(folder);
  MakeFolders(scratch_.Number(), folder, directory_);
  // Where a file system takes two names for one, nothing is overwritten.
  const int how = Has(folder) ? O_TRUNC : O_CREAT | O_EXCL;
  Descriptor file(
      openat(scratch_.Number(), path.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC | how, 0666));
  if (file.Number() < 0) Fail(directory_ + "/" + path, errno);
  WriteWhole(file.Number(), text, directory_ + "/" + path);
  // A file system may tell only now that it had no room: one of a network, or with a quota.
  if (!file.Close()) Fail(directory_ + "/" + path, errno);
  folders_.insert(folder);
}

void TreeOutput::Remove(const std::string& folder) {
  const std::string path = FileIn(folder);
  if (unlinkat(scratch_.Number(), path.c_str(), 0) != 0) Fail(directory_ + "/" + path, errno);
  folders_.erase(folder);
  // Its folders stay where they hold others.
  for (std::string empty = folder; !empty.empty();) {
    if (unlinkat(scratch_.Number(), empty.c_str(), AT_REMOVEDIR) != 0) break;
    const std::size_t slash = empty.rfind('/');
    empty.erase(slash == std::string::npos ? 0 : slash);
  }
}

std::string TreeOutput::PathOf(const std::string& folder) const {
  return directory_ + "/" + scratch_name_ + "/" + FileIn(folder);
}

void TreeOutput::Finish() {
  if (is_forced_) CheckWay();
  Move(scratch_.Number(), top_.Number(), "");
  RemoveScratch();
  is_done_ = true;
}

// Raises what would end the move in the middle.
void TreeOutput::CheckWay() const {
  Walk(scratch_.Number(), directory_, [&](const std::string& path, mode_t mode) {
    struct stat there = {};
    if (fstatat(top_.Number(), path.c_str(), &there, AT_SYMLINK_NOFOLLOW) != 0) return;
    const std::string shown = Joined(directory_, path);
    if (S_ISDIR(mode) && S_ISLNK(there.st_mode)) RefuseLink(shown);
    if (S_ISDIR(mode) && !S_ISDIR(there.st_mode)) Fail(shown, ENOTDIR);
    if (!S_ISDIR(mode) && S_ISDIR(there.st_mode)) Fail(shown, EISDIR);
  });
}

// Moves what is in the folder from to the folder to, both of that path below the top.
void TreeOutput::Move(int from, int to, const std::string& path) {
  std::vector<std::string> names = NamesIn(from, directory_ + "/" + path);
  // A document last: what it leads to is there then.
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    return std::pair(a == kDocumentName, a) < std::pair(b == kDocumentName, b);
  });
  for (const std::string& name : names) {
    const std::string below = Joined(path, name);
    const std::string shown = Joined(directory_, below);
    struct stat there = {};
    const bool is_there = fstatat(to, name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0;
    if (is_there && !is_forced_) Fail(shown, EEXIST);
    const bool is_document = name == kDocumentName;
    if (!is_there || is_document) {
      if (renameat(from, name.c_str(), to, name.c_str()) != 0) Fail(shown, errno);
      continue;
    }
    if (S_ISLNK(there.st_mode)) RefuseLink(shown);
    const Descriptor source(openat(from, name.c_str(), kFolderFlags | O_NOFOLLOW));
    const Descriptor target(openat(to, name.c_str(), kFolderFlags | O_NOFOLLOW));
    if (source.Number() < 0 || target.Number() < 0) Fail(shown, errno);
    Move(source.Number(), target.Number(), below);
  }
}

std::vector<std::string> TreeOutput::Strangers() const {
  std::vector<std::string> strangers;
  Walk(top_.Number(), directory_, [&](const std::string& path, mode_t mode) {
    const std::size_t slash = path.rfind('/');
    const bool is_in_top = slash == std::string::npos;
    const std::string name = is_in_top ? path : path.substr(slash + 1);
    const std::string folder = is_in_top ? "" : path.substr(0, slash);
    bool is_taken = S_ISREG(mode) && name == kDocumentName && folders_.count(folder) == 0;
    struct stat target = {};
    if (S_ISLNK(mode) && fstatat(top_.Number(), path.c_str(), &target, 0) == 0) {
      is_taken = S_ISDIR(target.st_mode) || (S_ISREG(target.st_mode) && name == kDocumentName);
    }
    if (is_taken) strangers.push_back(Joined(directory_, path));
  });
  std::sort(strangers.begin(), strangers.end());
  return strangers;
}

void TreeOutput::RemoveScratch() {
  if (scratch_name_.empty()) return;
  try {
    std::vector<std::string> folders;
    Walk(scratch_.Number(), directory_, [&](const std::string& path, mode_t mode) {
      if (S_ISDIR(mode)) {
        folders.push_back(path);
      } else {
        (void)unlinkat(scratch_.Number(), path.c_str(), 0);
      }
    });
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
      (void)unlinkat(scratch_.Number(), folder->c_str(), AT_REMOVEDIR);
    }
  } catch (const std::exception&) {
    // What cannot be taken away stays.
  }
  (void)unlinkat(top_.Number(), scratch_name_.c_str(), AT_REMOVEDIR);
  scratch_name_.clear();
}

}  // namespace ostrafel
