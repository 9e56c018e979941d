// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "loading/resource_loading.h"

#include <optional>
#include <stdexcept>

#include "layout/resource_id.h"
#include "store/resource_writer.h"

namespace ostrafel {

Resource ReadResource(const std::string& path, const std::string& listed_key) {
  Resource resource;
  resource.file = LoadJsonFile(path.c_str());
  json_t* root = resource.file.root.get();
  if (!json_is_object(root)) {
    resource.end = LoadEnd::kNotObject;
    return resource;
  }
  // Before the inclusion, which may replace the members.
  const std::optional<std::string> key = ChooseKey(root, listed_key);
  if (!key) {
    resource.end = LoadEnd::kBadId;
    return resource;
  }
  resource.key = *key;
  resource.inclusion = ResolveFileInclusion(root);
  if (resource.inclusion.end != InclusionEnd::kDone) resource.end = LoadEnd::kNotIncluded;
  return resource;
}

void PrintReadingMessages(const Resource& resource) {
  PrintJsonFileMessages(resource.file);
  PrintInclusionMessages(resource.inclusion);
}

LoadOutcome LoadResource(Server* server, const std::string& path, const std::string& listed_key) {
  const Resource resource = ReadResource(path, listed_key);
  PrintReadingMessages(resource);
  if (resource.end != LoadEnd::kDone) return {resource.end, path};
  try {
    if (WriteResource(server, resource.key, resource.file.root.get()) != 0) return {};
  } catch (const std::logic_error& error) {
    return {LoadEnd::kLogicError, error.what()};
  }
  return {LoadEnd::kNotWritten, path};
}

}  // namespace ostrafel
