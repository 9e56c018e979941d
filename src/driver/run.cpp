// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "driver/run.h"

#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "base/equals_ignore_case.h"
#include "base/files.h"
#include "connection/broken_pipe.h"
#include "connection/store_connection.h"
#include "document/document.h"
#include "document/file_inclusion.h"
#include "document/json_file.h"
#include "driver/arguments.h"
#include "driver/standard_descriptors.h"
#include "driver/usage.h"
#include "layout/layout.h"
#include "loading/static_data_walk.h"
#include "redis/tree_removal.h"
#include "store/command_batches.h"
#include "store/resource_writer.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = -1;

bool Refuse(const char* message) {
  (void)std::fputs(message, stderr);
  return false;
}

bool PrepareAction(redisContext* context, const Arguments& arguments) {
  if (EqualsIgnoreCase(arguments.action, "create")) {
    if (RemoveResourceTree(context, arguments.uri) == 0) {
      return Refuse("Fail to remove resource tree\n");
    }
    MergeMode = false;
    return true;
  }
  if (EqualsIgnoreCase(arguments.action, "update")) return true;
  (void)Refuse("Invalid Action parameter.\n");
  PrintUsage();
  return false;
}

bool FillLoadList(const Arguments& arguments, LoadList* list) {
  if (IsJsonFile(arguments.static_data_path)) {
    // The run goes on with whatever the list holds.
    (void)AppendToLoadList(arguments.static_data_path, arguments.uri, list);
    return true;
  }
  if (!IsDirectory(arguments.static_data_path)) {
    return Refuse("Input path should be a file or directory\n");
  }
  return WalkStaticData(arguments.static_data_path, arguments.uri, arguments.file_name, list) ||
         Refuse("Error occurs while reading files\n");
}

// The key of a document's root: its own "@odata.id" when there is more to it than that, else the
// listed one. Returns false when the "@odata.id" is no string.
bool ChooseKey(const json_t* root, const std::string& listed_key, std::string* key) {
  *key = listed_key;
  const json_t* id = json_object_get(root, IdMember);
  if (id == nullptr || json_object_size(root) == 1) return true;
  if (!json_is_string(id)) return false;
  *key = json_string_value(id);
  return true;
}

// Loads one file and queues its resource. Closes the connection before it reports a failed writer.
bool LoadEntry(StoreConnection* connection, const std::string& path,
               const std::string& listed_key) {
  const Document document = LoadJsonFile(path.c_str());
  if (!json_is_object(document.get())) {
    (void)std::fprintf(stderr, "The content of %s is not a valid JSON data.\n", path.c_str());
    return false;
  }
  // Chosen before the inclusion, which may replace the members.
  std::string key;
  if (!ChooseKey(document.get(), listed_key, &key)) return false;
  if (ResolveFileInclusion(document.get()) == 0) {
    (void)std::fprintf(stderr, ">>> Error occurs when processing &&File in %s\n", path.c_str());
    return false;
  }
  try {
    if (WriteResource(connection->get(), key, document.get()) != 0) return true;
  } catch (const std::logic_error& error) {
    (void)std::fprintf(stderr, "Error %s occurs while parsing root object.\n", error.what());
    return false;
  }
  connection->reset();
  (void)std::fprintf(stderr, ">>> Error occurs while parsing file %s\n", path.c_str());
  return false;
}

bool LoadEntries(StoreConnection* connection, const LoadList& list) {
  for (std::size_t i = 0; i < list.keys.size(); ++i) {
    if (!LoadEntry(connection, list.paths[i], list.keys[i])) return false;
  }
  return true;
}

// Removals first, so that what is stale is gone before the new values come. Stops at the first
// failure: what waits in the later batches is then not sent.
bool FlushAllBatches(redisContext* context) {
  const bool is_flushed = FlushRemovalBatch(context) != 0 && FlushHashBatch(context) != 0 &&
                          FlushListBatch(context) != 0;
  return is_flushed || Refuse(">>> Fail to write rest of data into redis\n");
}

}  // namespace

int RunOstrafel(int argc, char** argv) {
  if (!OccupyStandardDescriptors()) return kFailure;
  SurviveBrokenPipe();
  Arguments arguments;
  if (!CheckArguments(argc, argv, &arguments)) return kFailure;

  StoreConnection connection = OpenStoreConnection();  // closes itself on every later return
  if (!connection) {
    (void)Refuse("Failed to connect to Redis\n");
    return kFailure;
  }
  // The action comes before the path: a create with a bad path has emptied the tree.
  if (!PrepareAction(connection.get(), arguments)) return kFailure;
  LoadList list;
  if (!FillLoadList(arguments, &list)) return kFailure;
  if (!LoadEntries(&connection, list)) return kFailure;
  if (!FlushAllBatches(connection.get())) return kFailure;

  connection.reset();
  (void)std::puts(">>> Ostrafel parsing successfully.");
  return kSuccess;
}

}  // namespace ostrafel
