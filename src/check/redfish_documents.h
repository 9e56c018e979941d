// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What Redfish documents and their URIs have in common.
#ifndef OSTRAFEL_CHECK_REDFISH_DOCUMENTS_H_
#define OSTRAFEL_CHECK_REDFISH_DOCUMENTS_H_

#include <jansson.h>

#include <string>
#include <string_view>

namespace ostrafel {

/// key less a slash at the end.
[[nodiscard]] std::string WithoutLastSlash(std::string_view key);

/// What uri leads to: less its "#..." and "?...", and a slash at the end of the rest.
[[nodiscard]] std::string TargetOf(std::string_view uri);

/// The array "Members" of an object; null when it has none.
[[nodiscard]] const json_t* MembersOf(const json_t* object);

/// True when root (borrowed) is the answer to a failed request: it has an "error" and no
/// "@odata.id".
[[nodiscard]] bool IsErrorBody(const json_t* root);

/// True when root (borrowed), at key, is OData's list of what the service offers, which has no
/// "@odata.id" and is linked to by nobody.
[[nodiscard]] bool IsServiceDocument(const json_t* root, std::string_view key);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_REDFISH_DOCUMENTS_H_
