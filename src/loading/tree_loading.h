// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A whole load, between the connection and the last message.
#ifndef OSTRAFEL_LOADING_TREE_LOADING_H_
#define OSTRAFEL_LOADING_TREE_LOADING_H_

#include <string>

#include "loading/load_end.h"
#include "store/server.h"

namespace ostrafel {

enum class LoadAction {
  kCreate,  ///< What is stored under the URI is removed first.
  kUpdate,  ///< The tree is merged into what is stored.
};

struct LoadRequest {
  LoadAction action;
  std::string static_data_path;  ///< A .json file or a directory.
  std::string uri;               ///< The key of the root resource.
  std::string file_name;         ///< What to load in each folder.
};

/// Carries out the action on the store, lists the files, loads one after the other and sends what
/// still waits in the batches. Begins with the store state as it finds it, and clears its MergeMode
/// for a create. Stops at the first failure; what was sent before stays in the store, what waits is
/// dropped. Prints all messages but that of the end (PrintLoadEnd).
/// Raises out_of_range for a create with an empty uri.
[[nodiscard]] LoadOutcome LoadTree(Server* server, const LoadRequest& request);

}  // namespace ostrafel

#endif  // OSTRAFEL_LOADING_TREE_LOADING_H_
