// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Inclusion: a root object whose "&&File" member names a file stands for that file's members.
#ifndef OSTRAFEL_DOCUMENT_FILE_INCLUSION_H_
#define OSTRAFEL_DOCUMENT_FILE_INCLUSION_H_

#include <jansson.h>

#include <string>

#include "document/json_file.h"

namespace ostrafel {

/// The member of a root object that names the file, and its JSON pointer (RFC 6901).
inline constexpr const char* FileMember = "&&File";
inline constexpr const char* FileMemberPointer = "/&&File";

/// How an inclusion ends.
enum class InclusionEnd {
  kDone,            ///< The members were replaced, or there was nothing to include.
  kNotString,       ///< The value of "&&File" is no string.
  kParentNotation,  ///< The name holds ".." anywhere.
  kNotFound,        ///< The file cannot be opened.
  kNotObject,       ///< The file holds no JSON object.
  kNotCleared,      ///< The object's own members could not be removed.
  kNotUpdated,      ///< The file's members could not be put in; the object's own are gone.
};

struct Inclusion {
  InclusionEnd end = InclusionEnd::kDone;
  std::string path;  ///< Of the included file; empty when none was looked for.
  JsonFile file;     ///< That file, if it was read.
};

/// Replaces the members of object, in place, by those of the file that its "&&File" member names
/// below IncludeRoot, and keeps "&&File" itself with that name, so that the stored resource records
/// where it came from. Only this object's own "&&File" counts, not those of nested objects or of
/// the included file. A file with the extension xml need only exist: the object then stays as it
/// is. Prints nothing.
[[nodiscard]] Inclusion ResolveFileInclusion(json_t* object);

/// Prints what the loader says of an inclusion: what PrintJsonFileMessages prints of the file, then
///   "The value of &&File is not string type.\n"
///   "Notation '..' is unacceptable.\n"
///   "File not found.\n"
///   "Unqualified JSON file - %s\n"                with the path
///   "Failed to clear properties.\n", "Failed to update properties.\n"
void PrintInclusionMessages(const Inclusion& inclusion);

/// True when path (NUL-terminated) can be opened for reading. A directory can.
[[nodiscard]] bool FileExists(const char* path);

}  // namespace ostrafel

#endif  // OSTRAFEL_DOCUMENT_FILE_INCLUSION_H_
