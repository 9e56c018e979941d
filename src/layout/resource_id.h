// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What a JSON object's "@odata.id" means for where the object is stored.
#ifndef OSTRAFEL_LAYOUT_RESOURCE_ID_H_
#define OSTRAFEL_LAYOUT_RESOURCE_ID_H_

#include <jansson.h>

#include <optional>
#include <string>

namespace ostrafel {

/// The member that names a resource, or links to one.
inline constexpr const char* IdMember = "@odata.id";

/// True when value is an object that holds nothing but an "@odata.id" string: a link.
[[nodiscard]] bool IsLink(const json_t* value);

/// The key of a document's root object: its own "@odata.id", unless that is its only member; else
/// listed_key, which follows from the file's place. Returns nothing when the "@odata.id" that
/// counts is no string.
[[nodiscard]] std::optional<std::string> ChooseKey(const json_t* root,
                                                   const std::string& listed_key);

}  // namespace ostrafel

#endif  // OSTRAFEL_LAYOUT_RESOURCE_ID_H_
