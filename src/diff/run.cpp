// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/run.h"

#include <algorithm>
#include <exception>
#include <future>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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
#include "memory/glob.h"
#include "play/play.h"
#include "tool/grouped.h"
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

// Lists the files. False, after a message, where there is no tree.
bool ListFilesOf(const LoadRequest& request, Tree* tree) {
  *tree = {request, ListTree(request)};
  if (tree->listing.end == LoadEnd::kNoSuchPath) {
    (void)RefusePath(request.static_data_path);
    return false;
  }
  if (tree->listing.list.paths.empty()) {
    // No failure for the loader either, though a create leaves nothing then.
    PrintTrouble(request.static_data_path + ": holds no file " + request.file_name);
  }
  return true;
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

// All that a create removes or, as an update searches all keys, everything.
ReadingScope ScopeOf(const DiffOptions& options) {
  if (options.is_update) return {{"*"}, {}};
  ReadingScope scope;
  for (const std::string& pattern : TreePatterns(options.uri)) {
    // A server looks through all its keys for a pattern, but not for a key.
    const bool is_key = LiteralStart(pattern) == pattern;
    (is_key ? scope.keys : scope.patterns).push_back(pattern);
  }
  return scope;
}

// The keys that the tree writes beside the scope.
std::vector<std::string> KeysBeside(const ReadingScope& scope, const Server& wanted) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : wanted.keys) {
    const auto matches = [&name = key](const auto& pattern) { return MatchesGlob(pattern, name); };
    const bool is_inside = std::any_of(scope.patterns.begin(), scope.patterns.end(), matches) ||
                           std::find(scope.keys.begin(), scope.keys.end(), key) != scope.keys.end();
    if (!is_inside) keys.push_back(key);
  }
  return keys;
}

void ReadAgain(redisContext* context, Comparison* comparison) {
  ReadingScope scope = ScopeOf(comparison->options);
  const std::vector<std::string> beside = KeysBeside(scope, comparison->wanted);
  scope.keys.insert(scope.keys.end(), beside.begin(), beside.end());
  comparison->reading = ReadStore(context, scope, comparison->wanted);
}

// Makes the wanted store, unless it is that of an update, which Compare makes. False when the
// create would fail.
bool PlayCreate(Comparison* comparison) {
  return comparison->options.is_update || Play(comparison->tree, &comparison->wanted);
}

// Reads the store and, for a create, plays it meanwhile: reading takes about as long. False when
// the create would fail.
bool ReadAndPlay(redisContext* context, Comparison* comparison) {
  const ReadingScope scope = ScopeOf(comparison->options);
  std::future<Reading> reading =
      std::async(std::launch::async, [&] { return ReadStore(context, scope, {}); });
  const bool is_played = PlayCreate(comparison);
  comparison->reading = reading.get();
  if (!is_played) return false;
  if (!KeysBeside(scope, comparison->wanted).empty()) ReadAgain(context, comparison);
  return true;
}

// True when somebody sees where differences come from.
bool NeedsPlaces(const DiffOptions& options) {
  if (!options.ignored.empty()) return true;
  if (options.quiet || options.is_stat) return false;
  return !options.apply || options.format == DiffFormat::kJson;
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
  if (NeedsPlaces(options)) {
    FindPlaces(comparison->tree.listing, &comparison->differences);
  }
  LeaveOut(options, &comparison->differences);
  return is_played;
}

// Says that the store did not hold still, if it did not.
bool IsSteady(const Reading& reading) {
  if (reading.unsteady.empty()) return true;
  PrintTrouble(UnsteadyMessage(reading.unsteady.size(), reading.unsteady.front()));
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

// Compares what was read and prints. Returns the exit status. After trouble, what differs is shown:
// what the update that fails would leave, or the last reading of a store that does not hold still.
int Show(Comparison* comparison) {
  const bool is_played = Compare(comparison);
  const bool is_sound = IsSteady(comparison->reading) && is_played;
  const bool is_equal = comparison->differences.empty();
  if (!is_sound && is_equal) return kTrouble;
  if (!PrintReport(*comparison, std::nullopt) || !is_sound) return kTrouble;
  return is_equal ? kEqual : kDifferent;
}

// Reads, compares and changes the store; again when others change it, too. False, after a message,
// when the store could not be changed.
bool ApplyTo(redisContext* context, Comparison* comparison, Applied* applied) {
  if (!ReadAndPlay(context, comparison)) return false;
  for (int retries = 0; retries <= kMostRetries; ++retries) {
    if (retries > 0) ReadAgain(context, comparison);
    if (!IsSteady(comparison->reading) || !Compare(comparison)) return false;
    if (ApplyDifferences(context, comparison->reading.store, comparison->wanted,
                         comparison->differences, comparison->options.batch, applied)) {
      return true;
    }
  }
  PrintTrouble("others have changed the store each time that it was to be changed");
  return false;
}

// Says what has become of a store that could not be changed to the end.
void PrintState(const Applied& applied) {
  if (applied.is_in_doubt) {
    PrintTrouble("it is not known whether the last transaction was carried out");
  }
  if (applied.transactions > 0) {
    PrintTrouble("the store was changed: " + Counted(applied.keys, "key") + " in " +
                 Counted(applied.transactions, "transaction"));
  } else if (!applied.is_in_doubt) {
    PrintTrouble("the store was not changed");
  }
}

// Changes the store and prints. Returns the exit status.
int Apply(redisContext* context, Comparison* comparison) {
  Applied applied;
  try {
    if (ApplyTo(context, comparison, &applied)) {
      comparison->differences = applied.differences;
      if (PrintReport(*comparison, applied)) return kEqual;
    }
  } catch (const std::exception& error) {
    PrintFailure(error);
  }
  PrintState(applied);
  return kTrouble;
}

// Compares with the store that a create of another tree would leave. Returns the exit status.
int ShowAgainst(const std::string& path, Comparison* comparison) {
  LoadRequest request = RequestOf(comparison->options, LoadAction::kCreate);
  request.static_data_path = path;
  Tree other;
  if (!ListFilesOf(request, &other) || !Play(other, &comparison->reading.store)) return kTrouble;
  return PlayCreate(comparison) ? Show(comparison) : kTrouble;
}

int Run(int argc, char** argv) {
  DiffCommandLine line = ParseDiffCommandLine(argc, argv);
  if (!line.options) return line.status;
  SurviveBrokenPipe();
  Comparison comparison;
  comparison.options = std::move(*line.options);
  const DiffOptions& options = comparison.options;
  if (!SetIncludeRoot(options)) return kTrouble;
  const LoadAction action = options.is_update ? LoadAction::kUpdate : LoadAction::kCreate;
  if (!ListFilesOf(RequestOf(options, action), &comparison.tree)) return kTrouble;
  if (options.against) return ShowAgainst(*options.against, &comparison);
  const StoreConnection connection = ConnectTo(options.server);
  if (options.apply) return Apply(connection.get(), &comparison);
  return ReadAndPlay(connection.get(), &comparison) ? Show(&comparison) : kTrouble;
}

}  // namespace

int RunDiff(int argc, char** argv) { return RunTool(argc, argv, Run); }

}  // namespace ostrafel
