// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_REDIS_TREE_REMOVAL_H_
#define OSTRAFEL_REDIS_TREE_REMOVAL_H_

#include <hiredis/hiredis.h>

namespace ostrafel {

/// Deletes, at once, every key of the tree under uri: the keys that match
///   uri, uri/*, &&uri/*    or, for a uri that ends with a slash,    uri, uri*, &&uri*
/// (KEYS), one pattern after the other, the keys found for one (DEL, one key each, as one pipeline)
/// before the next is sent. So "&&" + uri itself is kept without a final slash and deleted with
/// one. Glob characters in uri keep their meaning.
///
/// uri is a NUL-terminated text. An empty one raises out_of_range; a null one is an error of the
/// caller, for which libstdc++ raises logic_error. Returns 1 when every pattern was tried: a KEYS
/// that is refused, unanswered or malformed is passed over, and what DEL answers does not matter.
/// Returns 0 when the reply of a DEL cannot be read (prints "Failed to get reply\n") or the uri is
/// too long for the standard library (prints "Failed to push data: %s.\n").
[[nodiscard]] unsigned RemoveResourceTree(redisContext* context, const char* uri);

}  // namespace ostrafel

#endif  // OSTRAFEL_REDIS_TREE_REMOVAL_H_
