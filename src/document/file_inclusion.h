// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Inclusion: a root object whose "&&File" member names a file stands for that file's members.
#ifndef OSTRAFEL_DOCUMENT_FILE_INCLUSION_H_
#define OSTRAFEL_DOCUMENT_FILE_INCLUSION_H_

#include <jansson.h>

namespace ostrafel {

/// Where included files are looked for: the web server's document directory on the target. Names
/// are appended to it as they are.
inline constexpr const char* IncludeRoot = "/usr/local/nginx/www/";

/// Replaces the members of object, in place, by those of the file that its "&&File" member names
/// below IncludeRoot, and keeps "&&File" itself with that name, so that the stored resource records
/// where it came from. Only this object's own "&&File" counts, not those of nested objects or of
/// the included file. A file with the extension xml need only exist: the object then stays as it
/// is.
///
/// Returns 1 on success, also without a "&&File" member. Returns 0 and prints
///   "The value of &&File is not string type.\n"
///   "Notation '..' is unacceptable.\n"          the name holds ".." anywhere
///   "File not found.\n"                         the file cannot be opened
///   "Unqualified JSON file - %s\n"              with the path, when it holds no JSON object (after
///                                               what LoadJsonFile prints)
///   "Failed to clear properties.\n", "Failed to update properties.\n"
/// After the last two the object may have lost its members.
[[nodiscard]] unsigned ResolveFileInclusion(json_t* object);

/// True when path (NUL-terminated) can be opened for reading. A directory can.
[[nodiscard]] bool FileExists(const char* path);

}  // namespace ostrafel

#endif  // OSTRAFEL_DOCUMENT_FILE_INCLUSION_H_
