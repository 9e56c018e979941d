// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A whole load, between the connection and the last message.
#ifndef OSTRAFEL_LOADING_TREE_LOADING_H_
#define OSTRAFEL_LOADING_TREE_LOADING_H_

#include <string>

#include "loading/load_end.h"
#include "loading/static_data_walk.h"
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
/// still waits in the batches: the three steps below. Begins with the store state as it finds it.
/// Stops at the first failure; what was sent before stays in the store, what waits is dropped.
/// Prints all messages but that of the end (PrintLoadEnd).
/// Raises out_of_range for a create with an empty uri.
[[nodiscard]] LoadOutcome LoadTree(Server* server, const LoadRequest& request);

/// The first step: for a create, removes the tree under the URI and clears the store state's
/// MergeMode. Its end is kDone or kTreeNotRemoved.
[[nodiscard]] LoadEnd BeginLoad(Server* server, const LoadRequest& request);

/// The second: lists the files of the path, its own or those of the directory (WalkStaticData), and
/// tells what is wrong. Its end is kDone, kNoSuchPath or kNotWalked; the list holds what was found.
[[nodiscard]] LoadEnd ListFiles(const LoadRequest& request, LoadList* list,
                                const TakeProblem& tell);

enum class OnFailure { kStop, kGoOn };

/// The third: loads the files of the list one after the other (LoadResource) and sends what waits.
/// Its outcome is the first failure, at which it stops unless it is to go on.
[[nodiscard]] LoadOutcome LoadFiles(Server* server, const LoadList& list, OnFailure on_failure);

}  // namespace ostrafel

#endif  // OSTRAFEL_LOADING_TREE_LOADING_H_
