// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "document/file_inclusion.h"

#include <cstdio>

#include "base/files.h"
#include "base/message.h"

namespace ostrafel {

namespace {

// What follows the last "."; the whole path when it has none.
std::string Extension(const std::string& path) { return path.substr(path.rfind('.') + 1); }

// Puts the members of the file in the place of those of object.
InclusionEnd Include(json_t* object, const std::string& name, Inclusion* inclusion) {
  if (name.find("..") != std::string::npos) return InclusionEnd::kParentNotation;
  inclusion->path = Documents.include_root + name;
  if (!FileExists(inclusion->path.c_str())) return InclusionEnd::kNotFound;
  if (Extension(inclusion->path) == "xml") return InclusionEnd::kDone;

  inclusion->file = LoadJsonFile(inclusion->path.c_str());
  json_t* included = inclusion->file.root.get();
  if (!json_is_object(included)) return InclusionEnd::kNotObject;
  if (json_object_clear(object) != 0) return InclusionEnd::kNotCleared;
  if (json_object_update(object, included) != 0) return InclusionEnd::kNotUpdated;
  // Replaces a "&&File" that the included file brought. Without it the resource is still whole.
  (void)json_object_set_new(object, FileMember, json_string(name.c_str()));
  return InclusionEnd::kDone;
}

}  // namespace

bool FileExists(const char* path) { return File(std::fopen(path, "r")) != nullptr; }

Inclusion ResolveFileInclusion(json_t* object) {
  Inclusion inclusion;
  const json_t* member = json_object_get(object, FileMember);
  if (member == nullptr) return inclusion;
  if (!json_is_string(member)) {
    inclusion.end = InclusionEnd::kNotString;
    return inclusion;
  }
  // A copy of the name: clearing the object releases the member.
  inclusion.end = Include(object, std::string(json_string_value(member)), &inclusion);
  return inclusion;
}

void PrintInclusionMessages(const Inclusion& inclusion) {
  PrintJsonFileMessages(inclusion.file);
  switch (inclusion.end) {
    case InclusionEnd::kDone:
      return;
    case InclusionEnd::kNotString:
      return PrintMessage("The value of &&File is not string type.\n");
    case InclusionEnd::kParentNotation:
      return PrintMessage("Notation '..' is unacceptable.\n");
    case InclusionEnd::kNotFound:
      return PrintMessage("File not found.\n");
    case InclusionEnd::kNotObject:
      return PrintMessage("Unqualified JSON file - %s\n", inclusion.path.c_str());
    case InclusionEnd::kNotCleared:
      return PrintMessage("Failed to clear properties.\n");
    case InclusionEnd::kNotUpdated:
      return PrintMessage("Failed to update properties.\n");
  }
}

}  // namespace ostrafel
