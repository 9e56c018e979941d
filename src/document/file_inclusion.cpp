// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "document/file_inclusion.h"

#include <cstdio>
#include <string>

#include "base/files.h"
#include "document/document.h"
#include "document/json_file.h"

namespace ostrafel {

namespace {

constexpr const char* kFileMember = "&&File";

// The text after the last "."; the whole path when it has none.
std::string Extension(const std::string& path) { return path.substr(path.rfind('.') + 1); }

unsigned Refuse(const char* message) {
  (void)std::fputs(message, stderr);
  return 0;
}

}  // namespace

bool FileExists(const char* path) { return File(std::fopen(path, "r")) != nullptr; }

unsigned ResolveFileInclusion(json_t* object) {
  const json_t* member = json_object_get(object, kFileMember);
  if (member == nullptr) return 1;
  if (!json_is_string(member)) return Refuse("The value of &&File is not string type.\n");
  // A copy: clearing the object below releases the member's own text.
  const std::string name = json_string_value(member);
  if (name.find("..") != std::string::npos) return Refuse("Notation '..' is unacceptable.\n");

  const std::string target = IncludeRoot + name;
  if (!FileExists(target.c_str())) return Refuse("File not found.\n");
  if (Extension(target) == "xml") return 1;

  const Document included = LoadJsonFile(target.c_str());
  if (!json_is_object(included.get())) {
    (void)std::fprintf(stderr, "Unqualified JSON file - %s\n", target.c_str());
    return 0;
  }
  if (json_object_clear(object) != 0) return Refuse("Failed to clear properties.\n");
  if (json_object_update(object, included.get()) != 0) {
    return Refuse("Failed to update properties.\n");
  }
  // Replaces a "&&File" that the included file brought. Without it the resource is still whole.
  (void)json_object_set_new(object, kFileMember, json_string(name.c_str()));
  return 1;
}

}  // namespace ostrafel
