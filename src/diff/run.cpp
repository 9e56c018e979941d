// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/run.h"

#include <stdexcept>
#include <string>
#include <utility>

#include "base/message.h"
#include "connection/broken_pipe.h"
#include "diff/apply.h"
#include "diff/comparison.h"
#include "diff/filter.h"
#include "diff/options.h"
#include "diff/places.h"
#include "diff/report.h"
#include "layout/layout.h"
#include "live/server_choice.h"
#include "live/store_reading.h"
#include "play/play.h"
#include "tool/output.h"
#include "tool/tool.h"

namespace ostrafel {

namespace {

constexpr int kEqual = 0;
constexpr int kDifferent = 1;

// A tree, and the files that a load of it takes.
struct Tree {
  LoadRequest request;
  Listing listing;
};

bool ListFilesOf(const LoadRequest& request, Tree* tree) {
  *tree = {request, ListTree(request)};
  if (tree->listing.end != LoadEnd::kNoSuchPath) return true;
  (void)RefusePath(request.static_data_path);
  return false;
}

// Carries out the tree's request on a store. Prints what the loader would print; false when the
// load would fail.
bool Play(const Tree& tree, Server* store) {
  const Played played = PlayLoad(store, tree.request, tree.listing, OnFailure::kStop);
  const char* messages = played.messages.c_str();
  PrintMessage("%s", messages);
  if (played.status == 0) return true;
  const bool is_create = tree.request.action == LoadAction::kCreate;
  PrintTrouble(std::string(is_create ? "a create" : "an update") + " of " +
               tree.request.static_data_path + " would end with status " +
               std::to_string(played.status));
  return false;
}

// A run of the program: what is compared, and with what.
struct Comparison {
  DiffOptions options;
  Tree tree;
  Server wanted;
  Reading reading;  // what the store holds
  Differences differences;
};

// All that a create removes and writes or, as an update searches all keys, everything.
ReadingScope ScopeOf(const Comparison& comparison) {
  if (comparison.options.is_update) return {{"*"}, {}};
  ReadingScope scope;
  for (const std::string& pattern : TreePatterns(comparison.options.uri)) {
    scope.patterns.push_back(pattern);
  }
  for (const auto& [key, value] : comparison.wanted.keys) scope.keys.push_back(key);
  return scope;
}

// Compares the store that was read with the wanted one. False when there is none.
bool Compare(Comparison* comparison) {
  const DiffOptions& options = comparison->options;
  bool is_played = true;
  if (options.is_update) {
    comparison->wanted = comparison->reading.store;
    is_played = Play(comparison->tree, &comparison->wanted);
  }
  comparison->differences = CompareStores(comparison->reading.store, comparison->wanted);
  if (!options.apply || !options.ignored.empty() || options.format == DiffFormat::kJson) {
    FindPlaces(comparison->tree.listing, &comparison->differences);
  }
  LeaveOut(options, &comparison->differences);
  return is_played;
}

// Says that the store did not hold still, if it did not.
bool IsSteady(const Reading& reading) {
  if (reading.unsteady.empty()) return true;
  PrintTrouble("the store was changed while it was read, again and again: " +
               std::to_string(reading.unsteady.size()) + " keys, such as " +
               reading.unsteady.front());
  return false;
}

bool PrintReport(const Comparison& comparison, const std::optional<Applied>& applied) {
  const DiffOptions& options = comparison.options;
  if (options.quiet) return true;
  const DiffReport report = {comparison.reading.store, comparison.wanted, comparison.differences,
                             comparison.tree.listing.list.paths.size(), applied};
  if (options.format == DiffFormat::kJson) return WriteOutput(DiffJson(options, report));
  return WriteOutput(options.is_stat ? DiffStat(report) : DiffText(options, report));
}

// Compares and prints. Returns the exit status.
int Show(Comparison* comparison) {
  const bool is_played = Compare(comparison);
  if (!PrintReport(*comparison, std::nullopt) || !is_played || !IsSteady(comparison->reading)) {
    return kTrouble;
  }
  return comparison->differences.empty() ? kEqual : kDifferent;
}

// Compares and changes the store; again when others change it, too. Returns the exit status.
int Apply(redisContext* context, Comparison* comparison) {
  Applied applied;
  for (int attempts = 0; attempts < kMostAttempts; ++attempts) {
    comparison->reading = ReadStore(context, ScopeOf(*comparison), comparison->wanted);
    if (!IsSteady(comparison->reading) || !Compare(comparison)) return kTrouble;
    if (ApplyDifferences(context, comparison->reading.store, comparison->wanted,
                         comparison->differences, comparison->options.batch, &applied)) {
      return PrintReport(*comparison, applied) ? kEqual : kTrouble;
    }
  }
  PrintTrouble("others have changed the store each time that it was to be changed");
  return kTrouble;
}

int Run(int argc, char** argv) {
  DiffCommandLine line = ParseDiffCommandLine(argc, argv);
  if (!line.options) return line.status;
  SurviveBrokenPipe();
  Comparison comparison;
  comparison.options = std::move(*line.options);
  const DiffOptions& options = comparison.options;
  if (!SetIncludeRoot(options)) return kTrouble;
  if (options.against) {
    LoadRequest request = RequestOf(options, LoadAction::kCreate);
    request.static_data_path = *options.against;
    Tree other;
    if (!ListFilesOf(request, &other) || !Play(other, &comparison.reading.store)) return kTrouble;
  }
  const LoadAction action = options.is_update ? LoadAction::kUpdate : LoadAction::kCreate;
  if (!ListFilesOf(RequestOf(options, action), &comparison.tree)) return kTrouble;
  if (!options.is_update && !Play(comparison.tree, &comparison.wanted)) return kTrouble;
  if (options.against) return Show(&comparison);
  const StoreConnection connection = ConnectTo(options.server);
  if (options.apply) return Apply(connection.get(), &comparison);
  comparison.reading = ReadStore(connection.get(), ScopeOf(comparison), comparison.wanted);
  return Show(&comparison);
}

}  // namespace

int RunDiff(int argc, char** argv) { return RunTool(argc, argv, Run); }

}  // namespace ostrafel
