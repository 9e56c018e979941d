// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "play/play.h"

#include "base/message.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

// Collects messages instead of printing them, while it lives.
class CollectedMessages {
 public:
  explicit CollectedMessages(std::string* messages) { Messages.collector = messages; }
  CollectedMessages(const CollectedMessages&) = delete;
  CollectedMessages& operator=(const CollectedMessages&) = delete;
  ~CollectedMessages() { Messages.collector = nullptr; }
};

LoadOutcome Load(Server* server, const LoadRequest& request, const Listing& listing,
                 OnFailure on_failure) {
  const LoadEnd begun = BeginLoad(server, request);
  if (begun != LoadEnd::kDone) return {begun};
  for (const auto& [problem, text] : listing.problems) PrintPathProblem(problem, text);
  if (listing.end != LoadEnd::kDone && on_failure == OnFailure::kStop) return {listing.end};
  return LoadFiles(server, listing.list, on_failure);
}

}  // namespace

Listing ListTree(const LoadRequest& request) {
  Listing listing;
  listing.end =
      ListFiles(request, &listing.list, [&](PathProblem problem, const std::string& text) {
        listing.problems.emplace_back(problem, text);
      });
  return listing;
}

Played PlayLoad(Server* server, const LoadRequest& request, const Listing& listing,
                OnFailure on_failure) {
  Played played;
  const CollectedMessages collected(&played.messages);
  Store.emplace();
  const LoadOutcome outcome = Load(server, request, listing, on_failure);
  PrintLoadEnd(outcome);
  if (outcome.end != LoadEnd::kDone) played.status = 255;
  return played;
}

}  // namespace ostrafel
