// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "loading/tree_loading.h"

#include <cstddef>

#include "loading/resource_loading.h"
#include "loading/static_data_walk.h"
#include "store/store_state.h"
#include "store/tree_removal.h"

namespace ostrafel {

namespace {

// Lists the files of the path: its own, or those of the directory.
LoadEnd FillLoadList(const LoadRequest& request, LoadList* list) {
  const std::string& path = request.static_data_path;
  if (IsJsonFile(path, PrintPathProblem)) {
    // The load goes on with whatever the list holds.
    (void)AppendToLoadList(path, request.uri, list, PrintPathProblem);
    return LoadEnd::kDone;
  }
  if (!IsDirectory(path)) return LoadEnd::kNoSuchPath;
  const bool is_walked =
      WalkStaticData(path, request.uri, request.file_name, list, PrintPathProblem);
  return is_walked ? LoadEnd::kDone : LoadEnd::kNotWalked;
}

// Removals first, so that what is stale is gone before the new values come. Stops at the first
// failure: what waits in the later batches is then not sent.
bool FlushAllBatches(Server* server) {
  return FlushRemovalBatch(server) != 0 && FlushHashBatch(server) != 0 &&
         FlushListBatch(server) != 0;
}

}  // namespace

LoadOutcome LoadTree(Server* server, const LoadRequest& request) {
  // The action comes before the path: a create with a bad path has emptied the tree.
  if (request.action == LoadAction::kCreate) {
    if (RemoveResourceTree(server, request.uri) == 0) return {LoadEnd::kTreeNotRemoved};
    Store->MergeMode = false;
  }
  LoadList list;
  const LoadEnd listed = FillLoadList(request, &list);
  if (listed != LoadEnd::kDone) return {listed};

  for (std::size_t i = 0; i < list.keys.size(); ++i) {
    LoadOutcome outcome = LoadResource(server, list.paths[i], list.keys[i]);
    if (outcome.end != LoadEnd::kDone) return outcome;
  }
  if (!FlushAllBatches(server)) return {LoadEnd::kNotFlushed};
  return {};
}

}  // namespace ostrafel
