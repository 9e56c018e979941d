// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/tree_arguments.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "document/json_file.h"
#include "loading/static_data_walk.h"
#include "tool/tool.h"

namespace ostrafel {

namespace {

// The length of StaticDataPath without the slashes at its end.
std::size_t TopLength(const TreeArguments& tree) {
  return tree.static_data_path.find_last_not_of('/') + 1;
}

// Where in path begins what is below StaticDataPath; 0 when path is not below it.
std::size_t RestStart(const TreeArguments& tree, const std::string& path) {
  const std::size_t length = TopLength(tree);
  if (path.compare(0, length, tree.static_data_path, 0, length) != 0) return 0;
  if (length >= path.size() || path[length] != '/') return 0;
  const std::size_t start = path.find_first_not_of('/', length);
  return start == std::string::npos ? 0 : start;
}

}  // namespace

Step TakeTreeArguments(const std::vector<std::string>& arguments, std::size_t needed,
                       TreeArguments* tree) {
  if (arguments.empty()) return RefuseLine("no StaticDataPath is given");
  if (arguments.size() < needed) return RefuseLine("no URI is given");
  if (arguments.size() > 3) return RefuseLine("one argument too many: '" + arguments[3] + "'");
  if (arguments[0].empty() || (arguments.size() > 1 && arguments[1].empty())) {
    return RefuseLine("StaticDataPath and URI must not be empty");
  }
  tree->static_data_path = arguments[0];
  if (arguments.size() > 1) tree->uri = arguments[1];
  if (arguments.size() > 2 && !arguments[2].empty()) tree->file_name = arguments[2];
  return std::nullopt;
}

Step TakeIncludeFolder(const std::string& text, TreeArguments* tree) {
  const Step step = TakeFile("www", text, &tree->www);
  if (!step && tree->www.back() != '/') tree->www += '/';
  return step;
}

bool SetIncludeRoot(const TreeArguments& tree) {
  if (tree.www.empty()) return true;
  if (!IsDirectory(tree.www)) {
    PrintTrouble(tree.www + ": is no folder");
    return false;
  }
  Documents.include_root = tree.www;
  return true;
}

LoadRequest RequestOf(const TreeArguments& tree, LoadAction action) {
  return {action, tree.static_data_path, tree.uri, tree.file_name};
}

int RefusePath(const std::string& path) {
  struct stat status = {};
  const bool exists = stat(path.c_str(), &status) == 0;
  PrintTrouble(
      path + ": " +
      (exists ? "is neither a folder nor a file whose name ends in .json" : std::strerror(errno)));
  return kTrouble;
}

std::string RelativePath(const TreeArguments& tree, const std::string& path) {
  return path.substr(RestStart(tree, path));
}

std::string ShownPath(const TreeArguments& tree, const std::string& path) {
  if (path.empty()) return tree.static_data_path;
  const std::size_t start = RestStart(tree, path);
  if (start == 0) return path;
  return path.substr(0, TopLength(tree)) + "/" + path.substr(start);
}

}  // namespace ostrafel
