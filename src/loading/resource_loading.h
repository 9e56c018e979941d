// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The loading of one file: read it, choose its key, include what it names, write its resource.
#ifndef OSTRAFEL_LOADING_RESOURCE_LOADING_H_
#define OSTRAFEL_LOADING_RESOURCE_LOADING_H_

#include <string>

#include "document/file_inclusion.h"
#include "document/json_file.h"
#include "store/server.h"

namespace ostrafel {

/// How loading ends. The message of each is PrintLoadEnd's.
enum class LoadEnd {
  kDone,
  kTreeNotRemoved,  ///< A create could not remove what there was.
  kNoSuchPath,      ///< The path leads neither to a JSON file nor to a directory.
  kNotWalked,       ///< A directory could not be read.
  kNotObject,       ///< The file is unreadable, not JSON, or its root is no object.
  kBadId,           ///< The "@odata.id" of the root is no string. There is no message for it.
  kNotIncluded,     ///< The inclusion failed.
  kLogicError,      ///< The standard library refused a string while the resource was written.
  kNotWritten,      ///< The last member could not be written.
  kNotFlushed,      ///< What waited at the end could not be sent.
};

struct LoadOutcome {
  LoadEnd end = LoadEnd::kDone;
  std::string text = {};  ///< The file's path; of kLogicError, what the library says.
};

/// A resource as it will be written, or why it will not.
struct Resource {
  LoadEnd end = LoadEnd::kDone;  ///< Or kNotObject, kBadId, kNotIncluded.
  std::string key = {};          ///< Where it goes, once that is known.
  JsonFile file = {};            ///< Its root has the included members in place.
  Inclusion inclusion = {};
};

/// Reads the resource in the file at path. listed_key is the key that follows from the file's
/// place. Prints nothing; raises bad_alloc as LoadJsonFile does.
[[nodiscard]] Resource ReadResource(const std::string& path, const std::string& listed_key);

/// Prints what the loader says of the reading: PrintJsonFileMessages and PrintInclusionMessages.
void PrintReadingMessages(const Resource& resource);

/// Reads the resource, prints what is to be said of that, and writes it (WriteResource).
[[nodiscard]] LoadOutcome LoadResource(Server* server, const std::string& path,
                                       const std::string& listed_key);

}  // namespace ostrafel

#endif  // OSTRAFEL_LOADING_RESOURCE_LOADING_H_
