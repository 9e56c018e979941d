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
  // Now, because an inclusion may replace the members.
  const std::optional<std::string> key = ChooseKey(root, listed_key);
  if (!key) {
    resource.end = LoadEnd::kBadId;
    return resource;
  }
  resource.key = *key;
  return resource;
}

void IncludeInResource(Resource* resource) {
  resource->inclusion = ResolveFileInclusion(resource->file.root.get());
  if (resource->inclusion.end != InclusionEnd::kDone) resource->end = LoadEnd::kNotIncluded;
}

LoadOutcome LoadResource(Server* server, const std::string& path, const std::string& listed_key) {
  Resource resource = ReadResource(path, listed_key);
  PrintJsonFileMessages(resource.file);
  if (resource.end == LoadEnd::kDone) {
    IncludeInResource(&resource);
    PrintInclusionMessages(resource.inclusion);
    resource.inclusion.file.root.reset();  // its members live on in the resource
  }
  if (resource.end != LoadEnd::kDone) return {resource.end, path};
  try {
    if (WriteResource(server, resource.key, resource.file.root.get()) != 0) return {};
  } catch (const std::logic_error& error) {
    return {LoadEnd::kLogicError, error.what()};
  }
  return {LoadEnd::kNotWritten, path};
}

}  // namespace ostrafel
