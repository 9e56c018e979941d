// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/resource_id.h"

namespace ostrafel {

bool IsLink(const json_t* value) {
  return json_object_size(value) == 1 && json_is_string(json_object_get(value, IdMember));
}

std::optional<std::string> ChooseKey(const json_t* root, const std::string& listed_key) {
  const json_t* id = json_object_get(root, IdMember);
  if (id == nullptr || json_object_size(root) == 1) return listed_key;
  if (!json_is_string(id)) return std::nullopt;
  return json_string_value(id);
}

}  // namespace ostrafel
