// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/redfish_documents.h"

#include "base/affixes.h"
#include "layout/resource_id.h"

namespace ostrafel {

std::string WithoutLastSlash(std::string_view key) {
  if (EndsWith(key, "/")) key.remove_suffix(1);
  return std::string(key);
}

std::string TargetOf(std::string_view uri) {
  return WithoutLastSlash(uri.substr(0, uri.find_first_of("#?")));
}

const json_t* MembersOf(const json_t* object) {
  const json_t* members = json_object_get(object, "Members");
  return json_is_array(members) ? members : nullptr;
}

bool IsErrorBody(const json_t* root) {
  const json_t* error = json_object_get(root, "error");
  if (!json_is_object(error) || json_object_get(root, IdMember) != nullptr) return false;
  return json_object_get(error, "code") != nullptr ||
         json_object_get(error, "message") != nullptr ||
         json_object_get(error, "@Message.ExtendedInfo") != nullptr;
}

bool IsServiceDocument(const json_t* root, std::string_view key) {
  return EndsWith(WithoutLastSlash(key), "/odata") && json_object_get(root, IdMember) == nullptr &&
         json_object_get(root, "@odata.context") != nullptr &&
         json_is_array(json_object_get(root, "value"));
}

}  // namespace ostrafel
