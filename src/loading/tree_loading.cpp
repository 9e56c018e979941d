// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "loading/tree_loading.h"

#include <cstddef>
#include <utility>

#include "loading/resource_loading.h"
#include "store/store_state.h"
#include "store/tree_removal.h"

namespace ostrafel {

namespace {

// Removals first, so that what is stale is gone before the new values come. After a failure, what
// waits in the later batches is sent only if the load is to go on.
bool FlushAllBatches(Server* server, OnFailure on_failure) {
  bool is_good = true;
  for (const auto flush : {FlushRemovalBatch, FlushHashBatch, FlushListBatch}) {
    if (flush(server) != 0) continue;
    if (on_failure == OnFailure::kStop) return false;
    is_good = false;
  }
  return is_good;
}

}  // namespace

LoadEnd BeginLoad(Server* server, const LoadRequest& request) {
  if (request.action != LoadAction::kCreate) return LoadEnd::kDone;
  if (RemoveResourceTree(server, request.uri) == 0) return LoadEnd::kTreeNotRemoved;
  Store->MergeMode = false;
  return LoadEnd::kDone;
}

LoadEnd ListFiles(const LoadRequest& request, LoadList* list, const TakeProblem& tell) {
  const std::string& path = request.static_data_path;
  if (IsJsonFile(path, tell)) {
    // The load goes on with whatever the list holds.
    (void)AppendToLoadList(path, request.uri, list, tell);
    return LoadEnd::kDone;
  }
  if (!IsDirectory(path)) return LoadEnd::kNoSuchPath;
  const bool is_walked = WalkStaticData(path, request.uri, request.file_name, list, tell);
  return is_walked ? LoadEnd::kDone : LoadEnd::kNotWalked;
}

LoadOutcome LoadFiles(Server* server, const LoadList& list, OnFailure on_failure) {
  LoadOutcome first;
  for (std::size_t i = 0; i < list.keys.size(); ++i) {
    LoadOutcome outcome = LoadResource(server, list.paths[i], list.keys[i]);
    if (outcome.end == LoadEnd::kDone) continue;
    if (on_failure == OnFailure::kStop) return outcome;
    if (first.end == LoadEnd::kDone) first = std::move(outcome);
  }
  if (!FlushAllBatches(server, on_failure) && first.end == LoadEnd::kDone)
    first = {LoadEnd::kNotFlushed};
  return first;
}

LoadOutcome LoadTree(Server* server, const LoadRequest& request) {
  // The action comes before the path: a create with a bad path has emptied the tree.
  const LoadEnd begun = BeginLoad(server, request);
  if (begun != LoadEnd::kDone) return {begun};
  LoadList list;
  const LoadEnd listed = ListFiles(request, &list, PrintPathProblem);
  if (listed != LoadEnd::kDone) return {listed};
  return LoadFiles(server, list, OnFailure::kStop);
}

}  // namespace ostrafel
