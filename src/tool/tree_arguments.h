// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The arguments that name a tree, as the loader takes them.
#ifndef OSTRAFEL_TOOL_TREE_ARGUMENTS_H_
#define OSTRAFEL_TOOL_TREE_ARGUMENTS_H_

#include <cstddef>
#include <string>
#include <vector>

#include "loading/tree_loading.h"
#include "tool/command_line.h"

namespace ostrafel {

struct TreeArguments {
  std::string static_data_path;  ///< As typed.
  std::string uri = "/redfish/v1";
  std::string file_name = "index.json";
  std::string www;  ///< The folder of included files, with its last slash; empty: the loader's own.
};

/// Takes "StaticDataPath URI FileName", of which the last may be left out or empty and so many must
/// be there (1 or 2).
[[nodiscard]] Step TakeTreeArguments(const std::vector<std::string>& arguments, std::size_t needed,
                                     TreeArguments* tree);

/// Takes the argument of --www.
[[nodiscard]] Step TakeIncludeFolder(const std::string& text, TreeArguments* tree);

/// Lets files be included from tree.www. False, after a message, when that is no folder.
[[nodiscard]] bool SetIncludeRoot(const TreeArguments& tree);

/// What the loader would be asked to do with the tree.
[[nodiscard]] LoadRequest RequestOf(const TreeArguments& tree, LoadAction action);

/// Says why there is nothing at the path that the loader could take. Gives kTrouble.
[[nodiscard]] int RefusePath(const std::string& path);

/// The path less the StaticDataPath in front of it and the slashes between; unchanged when it is
/// not below StaticDataPath.
[[nodiscard]] std::string RelativePath(const TreeArguments& tree, const std::string& path);

/// The path as a person would open it: with one slash behind the StaticDataPath, however many that
/// ends with. An empty path stands for StaticDataPath itself.
[[nodiscard]] std::string ShownPath(const TreeArguments& tree, const std::string& path);

}  // namespace ostrafel

#endif  // OSTRAFEL_TOOL_TREE_ARGUMENTS_H_
