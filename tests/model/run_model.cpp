// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/run_model.h"

#include <optional>

#include "model/batches.h"
#include "model/inclusion.h"
#include "model/json_value.h"
#include "model/run_state.h"
#include "model/static_data.h"
#include "model/tree_removal.h"
#include "model/writer.h"

namespace model {
namespace {

const std::string kUsage =
    "Usage:\n"
    "  Ostrafel <Action> <StaticDataPath> <URI> [FileName]\n"
    "\n"
    "Options:\n"
    "  Action         CREATE or UPDATE (case insensitive)\n"
    "  StaticDataPath Path to static data file or directory.\n"
    "  URI            The URI of the root instance of static data files.\n"
    "  FileName       Load the specific file. If this option is not specified,\n"
    "                 default is index.json.\n"
    "\n"
    "Example,\n"
    "  Ostrafel create /tmp/sdata /redfish\n"
    "    - For each folder under /tmp/sdata, index.json will be loaded.\n"
    "      For instance, /tmp/sdata/index.json will be loaded to redis key /redfish.\n"
    "\n"
    "  Ostrafel update /tmp/sdata/v1/other.json /redfish/v1/\n"
    "    - /tmp/sdata/v1/other.json will be merged to redis key /redfish/v1/.\n"
    "\n"
    "  Ostrafel update /tmp/sdata/ /redfish other.json\n"
    "    - For each folder under /tmp/sdata, other.json will be merged.\n"
    "      If other.json is not found in the folder, the key would not be updated.\n"
    "\n";

bool Fail(RunState& run, const std::string& message) {
  run.err += message;
  return false;
}

bool CarryOutAction(RunState& run, const std::string& action, const std::string& uri) {
  if (SameIgnoringCase(action, "create")) {
    if (!RemoveTree(run, uri)) return Fail(run, "Fail to remove resource tree\n");
    run.merge_mode = false;
    return true;
  }
  if (SameIgnoringCase(action, "update")) return true;
  return Fail(run, "Invalid Action parameter.\n" + kUsage);
}

bool ListFiles(RunState& run, const std::vector<std::string>& arguments,
               std::vector<LoadEntry>& entries) {
  const std::string& path = arguments[1];
  const std::string& uri = arguments[2];
  if (IsJsonFile(path, run.err)) {
    entries.push_back({path, uri});
    return true;
  }
  if (!IsDirectory(path)) return Fail(run, "Input path should be a file or directory\n");
  const bool named = arguments.size() > 3 && !arguments[3].empty();
  const std::string file_name = named ? arguments[3] : "index.json";
  if (WalkStaticData(path, uri, file_name, entries, run.err)) return true;
  return Fail(run, "Error occurs while reading files\n");
}

bool LoadFile(RunState& run, const LoadEntry& entry) {
  std::optional<JsonValue> root = LoadJson(entry.path, run.err);
  if (!root || root->kind != JsonValue::Kind::kObject) {
    return Fail(run, "The content of " + entry.path + " is not a valid JSON data.\n");
  }
  std::string key = entry.key;
  const JsonValue* id = FindMember(*root, "@odata.id");
  if (id != nullptr && root->members.size() > 1) {
    if (id->kind != JsonValue::Kind::kString) return false;
    key = id->text;
  }
  if (!ResolveInclusion(*root, run.include_root, run.err)) {
    return Fail(run, ">>> Error occurs when processing &&File in " + entry.path + "\n");
  }
  if (WriteRoot(run, key, *root)) return true;
  return Fail(run, ">>> Error occurs while parsing file " + entry.path + "\n");
}

bool PlayRun(RunState& run, const std::vector<std::string>& arguments) {
  if (!CarryOutAction(run, arguments[0], arguments[2])) return false;
  std::vector<LoadEntry> entries;
  if (!ListFiles(run, arguments, entries)) return false;
  for (const LoadEntry& entry : entries) {
    if (!LoadFile(run, entry)) return false;
  }
  if (!FlushRemovals(run) || !FlushHashes(run) || !FlushLists(run)) {
    return Fail(run, ">>> Fail to write rest of data into redis\n");
  }
  run.out += ">>> Ostrafel parsing successfully.\n";
  return true;
}

}  // namespace

Outcome RunModel(Endpoint& endpoint, const std::vector<std::string>& arguments,
                 const std::string& include_root) {
  RunState run(endpoint, include_root);
  const bool succeeded = PlayRun(run, arguments);
  return {run.out, run.err, succeeded ? 0 : 255};
}

}  // namespace model
