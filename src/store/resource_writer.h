// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Writes JSON resources into the store, in the layout of layout.h. Records are queued (queue.h); in
// an update (MergeMode) each member is pruned first (pruning.h).
//
// Operations return 1 (success) or 0 (failure). A nested object or array stops at its first failure
// and passes it up; the top level goes on. Records already queued are not withdrawn. In a list,
// parent_key is the list and name the decimal index of the element in it. Strings that the standard
// library refuses raise its logic errors, which the caller handles, but for those that queuing
// reports (queue.h). The order in which records are queued decides what a full batch sends: it is
// part of the contract.
#ifndef OSTRAFEL_STORE_RESOURCE_WRITER_H_
#define OSTRAFEL_STORE_RESOURCE_WRITER_H_

#include <jansson.h>

#include <string>

#include "layout/layout.h"
#include "store/server.h"

namespace ostrafel {

/// Writes the members of root (borrowed, an object) into the hash at key, unless this run wrote
/// that key before: then it returns 1 at once. Every member is attempted; the result is that of the
/// last one, or 1 when there is none.
[[nodiscard]] unsigned WriteResource(Server* server, const std::string& key, json_t* root);

/// Writes an object member or element: a link (WriteObjectReference), or a reference record in the
/// parent and then the members into a hash of their own, at the "@odata.id" value when there is
/// one. An id that was written before in this run gets only its record. A link that could not be
/// written goes on as an object stored under its id. Fails on an "@odata.id" that is not a string.
[[nodiscard]] unsigned WriteObjectProperty(Server* server, const std::string& parent_key,
                                           const std::string& name, json_t* value,
                                           ParentKind parent);

/// Writes the elements of an array member or element into a list of its own and then, after them,
/// the reference record in the parent.
[[nodiscard]] unsigned WriteArrayProperty(Server* server, const std::string& parent_key,
                                          const std::string& name, json_t* value,
                                          ParentKind parent);

/// Writes the reference record of an object that holds nothing but an "@odata.id" string. In an
/// update, removes what the member was before. If it was an inline object, which its record in the
/// parent hash shows (AskFieldExists), everything below it goes as well.
///
/// Returns 0 for any other object and when a step failed, which the caller does not tell apart.
[[nodiscard]] unsigned WriteObjectReference(Server* server, const std::string& parent_key,
                                            const std::string& name, json_t* value,
                                            ParentKind parent);

/// Writes a scalar: with a name, as a field of the hash at key (pruned first in an update); without
/// one (null), as the next value of the list at key. Fails on a value that RenderValue does not
/// render and prints "get value of %s/%s fail" with key and name, without a line end.
[[nodiscard]] unsigned WriteScalarProperty(Server* server, const std::string& key, const char* name,
                                           const json_t* value);

/// Writes a string member of a reserved name, escaped but not quoted, without pruning. Returns 0
/// for any other member and when it could not be queued; the caller then writes it as a plain
/// scalar.
[[nodiscard]] unsigned WriteReservedProperty(Server* server, const std::string& key,
                                             const char* name, const json_t* value);

}  // namespace ostrafel

#endif  // OSTRAFEL_STORE_RESOURCE_WRITER_H_
