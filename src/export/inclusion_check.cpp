// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/inclusion_check.h"

#include <jansson.h>
#include <sys/stat.h>

#include "document/file_inclusion.h"
#include "document/json_file.h"
#include "export/folders.h"
#include "play/play.h"

namespace ostrafel {

namespace {

// True when a load of the document would open what is neither a file nor a folder. It waits for
// whoever writes into a FIFO, and reads a device as long as that gives something. What such a thing
// gave once, it need not give again.
bool OpensNoFile(const std::string& path) {
  const JsonFile document = LoadJsonFile(path.c_str());
  const json_t* name = json_object_get(document.root.get(), FileMember);
  if (!json_is_string(name)) return false;
  const std::string included = Documents.include_root + json_string_value(name);
  struct stat status = {};
  return stat(included.c_str(), &status) == 0 && !S_ISREG(status.st_mode) &&
         !S_ISDIR(status.st_mode);
}

}  // namespace

bool ComesBack(const std::string& path, const std::string& listed_key, const Contents& contents) {
  if (OpensNoFile(path)) return false;
  const LoadRequest request = {LoadAction::kCreate, path, listed_key, kDocumentName};
  Server server;
  const Played played = PlayLoad(&server, request, ListTree(request), OnFailure::kStop);
  if (played.status != 0 || server.keys.size() != contents.size()) return false;
  for (const auto& [entry, value] : contents) {
    const auto key = server.keys.find(entry->first);
    if (key == server.keys.end() || !(key->second == value)) return false;
  }
  return true;
}

}  // namespace ostrafel
