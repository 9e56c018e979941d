// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_STORE_TREE_REMOVAL_H_
#define OSTRAFEL_STORE_TREE_REMOVAL_H_

#include <string>

#include "store/server.h"

namespace ostrafel {

/// Deletes, at once, every key of the tree under uri: what matches one pattern of TreePatterns
/// (layout.h) before the next is looked for. Returns 1 when every pattern was tried. Returns 0 when
/// DeleteMatchingKeys does, or the uri is too long for the standard library (PrintLengthError).
/// Raises out_of_range for an empty uri.
[[nodiscard]] unsigned RemoveResourceTree(Server* server, const std::string& uri);

}  // namespace ostrafel

#endif  // OSTRAFEL_STORE_TREE_REMOVAL_H_
