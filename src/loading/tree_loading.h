// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A whole load, between the connection and the last message.
#ifndef OSTRAFEL_LOADING_TREE_LOADING_H_
#define OSTRAFEL_LOADING_TREE_LOADING_H_

#include <string>

#include "loading/resource_loading.h"
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
/// dropped. Prints all messages but the outcome's own.
[[nodiscard]] LoadOutcome LoadTree(Server* server, const LoadRequest& request);

/// Prints the message of a load's end, if it has one:
///   "Fail to remove resource tree\n"                        kTreeNotRemoved
///   "Input path should be a file or directory\n"            kNoSuchPath
///   "Error occurs while reading files\n"                    kNotWalked
///   "The content of %s is not a valid JSON data.\n"         kNotObject
///   ">>> Error occurs when processing &&File in %s\n"       kNotIncluded
///   "Error %s occurs while parsing root object.\n"          kLogicError
///   ">>> Error occurs while parsing file %s\n"              kNotWritten
///   ">>> Fail to write rest of data into redis\n"           kNotFlushed
void PrintLoadEnd(const LoadOutcome& outcome);

}  // namespace ostrafel

#endif  // OSTRAFEL_LOADING_TREE_LOADING_H_
