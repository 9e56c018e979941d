// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Loads that are played: carried out on a store in memory, to see what they would do.
#ifndef OSTRAFEL_PLAY_PLAY_H_
#define OSTRAFEL_PLAY_PLAY_H_

#include <string>
#include <utility>
#include <vector>

#include "loading/load_end.h"
#include "loading/static_data_walk.h"
#include "loading/tree_loading.h"
#include "memory/memory_server.h"

namespace ostrafel {

/// The files of a tree, in the order of a load, and what was wrong with paths.
struct Listing {
  LoadEnd end = LoadEnd::kDone;  ///< Or kNoSuchPath, kNotWalked.
  LoadList list;
  std::vector<std::pair<PathProblem, std::string>> problems;  ///< As TakeProblem is told them.
};

/// Lists the files that a load of the request takes (ListFiles). Prints nothing.
[[nodiscard]] Listing ListTree(const LoadRequest& request);

/// What a run of the loader would end with, as who started it sees it.
struct Played {
  int status = 0;        ///< The exit status: 0 or 255.
  std::string messages;  ///< All that it would print on standard error.
};

/// Carries out the request on server with the files of listing, which is ListTree's of the request,
/// in a run of its own: Store begins afresh. Leaves in server what a real load would leave in a
/// server that held the same. With OnFailure::kGoOn, a failing file does not keep the files after
/// it from being loaded. Prints nothing. Raises out_of_range for a create with an empty URI.
[[nodiscard]] Played PlayLoad(Server* server, const LoadRequest& request, const Listing& listing,
                              OnFailure on_failure);

}  // namespace ostrafel

#endif  // OSTRAFEL_PLAY_PLAY_H_
