// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The loading of one file: read it, choose its key, include what it names, write its resource.
#ifndef OSTRAFEL_LOADING_RESOURCE_LOADING_H_
#define OSTRAFEL_LOADING_RESOURCE_LOADING_H_

#include <string>

#include "document/file_inclusion.h"
#include "document/json_file.h"
#include "loading/load_end.h"
#include "store/server.h"

namespace ostrafel {

/// A resource as it will be written, or why it will not.
struct Resource {
  LoadEnd end = LoadEnd::kDone;  ///< Or kNotObject, kBadId, kNotIncluded.
  std::string key = {};          ///< Where it goes, once that is known.
  JsonFile file = {};            ///< Its root has the included members in place.
  Inclusion inclusion = {};
};

/// Reads the file at path and chooses the resource's key; listed_key is the one that follows from
/// the file's place. Prints nothing; raises bad_alloc as LoadJsonFile does.
[[nodiscard]] Resource ReadResource(const std::string& path, const std::string& listed_key);

/// Includes what a resource whose end is kDone names in "&&File"; its end is kNotIncluded when that
/// fails. Prints nothing; raises bad_alloc as LoadJsonFile does.
void IncludeInResource(Resource* resource);

/// Reads the resource, includes what it names and writes it (WriteResource). Prints what is to be
/// said of each step before the next one, but not its end: that of the first failure, with the path
/// or, of kLogicError, what the library says.
[[nodiscard]] LoadOutcome LoadResource(Server* server, const std::string& path,
                                       const std::string& listed_key);

}  // namespace ostrafel

#endif  // OSTRAFEL_LOADING_RESOURCE_LOADING_H_
