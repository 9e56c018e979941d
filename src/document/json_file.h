// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Reading JSON files, with jansson.
#ifndef OSTRAFEL_DOCUMENT_JSON_FILE_H_
#define OSTRAFEL_DOCUMENT_JSON_FILE_H_

#include <jansson.h>

#include <array>
#include <string>
#include <unordered_map>

#include "document/document.h"

namespace ostrafel {

/// What became of reading a file.
struct JsonFile {
  Document root;            ///< Empty when the file could not be opened or is not JSON.
  bool is_open = false;     ///< The file could be opened.
  bool is_refused = false;  ///< It is not JSON; error says why.
  bool is_short = false;    ///< Fewer than 3 bytes could be read. What there was is parsed.
  json_error_t error = {};  ///< What the parser says.
};

/// Files that were read, by path.
using KeptFiles = std::unordered_map<std::string, JsonFile>;

/// Where included files are looked for: the web server's document directory on the target. Names
/// are appended to it as they are.
inline constexpr const char* IncludeRoot = "/usr/local/nginx/www/";

/// What reading needs besides the file. One thread uses it, for one file at a time.
struct DocumentState {
  /// What stands for IncludeRoot, with its last slash. The loader leaves it as it is.
  std::string include_root = IncludeRoot;
  /// Where LoadJsonFile keeps what it reads, to read no file twice; null: nowhere.
  KeptFiles* kept_files = nullptr;
  /// jansson was refused memory while it read the file. Its parser then drops characters of strings
  /// without an error.
  bool is_memory_exhausted = false;
  /// stdio's buffer of the file. Most files fit in and take one read.
  std::array<char, 32768> file_buffer = {};
};
extern DocumentState Documents;

/// Lets LoadJsonFile see that jansson got no memory (json_set_alloc_funcs, process-wide). A program
/// that stores what it reads calls it once, before the first file.
void WatchJsonMemory();

/// Reads the JSON file at path (NUL-terminated) with json_loadf and its flags at 0: the root must
/// be an object or an array, which the caller tells apart. A UTF-8 byte-order mark at the start is
/// skipped. Of a kept file, the root is a copy that shares its members: what is put into the root
/// or taken out of it stays there. Prints nothing. Raises bad_alloc when memory ran out and the
/// parser did not notice.
[[nodiscard]] JsonFile LoadJsonFile(const char* path);

/// Prints what the loader says of a file that was read:
///   "error: Failed to read file.\n"   fewer than 3 bytes
///   "error: on line %d: %s\n"         not JSON, with the parser's line and words
/// Of one that could not be opened it says nothing: the caller's message names the file.
void PrintJsonFileMessages(const JsonFile& file);

}  // namespace ostrafel

#endif  // OSTRAFEL_DOCUMENT_JSON_FILE_H_
