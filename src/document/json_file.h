// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DOCUMENT_JSON_FILE_H_
#define OSTRAFEL_DOCUMENT_JSON_FILE_H_

#include "document/document.h"

namespace ostrafel {

/// Reads the JSON file at path (NUL-terminated) with json_loadf and its flags at 0: the root must
/// be an object or an array, which the caller tells apart. A UTF-8 byte-order mark at the start is
/// skipped.
///
/// Returns a new reference, or nothing when the file cannot be opened (nothing is printed: the
/// caller's message names the file) or is not valid JSON (prints "error: on line %d: %s\n" with the
/// parser's line and text). A file of which fewer than 3 bytes can be read makes it print
/// "error: Failed to read file.\n" and is parsed all the same. Raises bad_alloc when memory ran out
/// and the parser did not notice. Sets jansson's allocation functions, process-wide.
[[nodiscard]] Document LoadJsonFile(const char* path);

}  // namespace ostrafel

#endif  // OSTRAFEL_DOCUMENT_JSON_FILE_H_
