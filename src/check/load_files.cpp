// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/load_files.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "base/files.h"
#include "document/file_inclusion.h"
#include "layout/resource_id.h"
#include "loading/resource_loading.h"
#include "text/json_pointer.h"
#include "text/text_file.h"

namespace ostrafel {

namespace {

constexpr const char* kLoadEnds = ", and the load ends at this file";

// Included path -> the index of the finding that tells what is wrong with it.
using IncludedFaults = std::unordered_map<std::string, std::size_t>;

// --- The listing --------------------------------------------------------------------------------

// Folders that can be listed but not searched: not even their "." can be looked at, and nothing
// else in them.
std::unordered_set<std::string> ClosedFolders(const Listing& listing) {
  std::unordered_set<std::string> folders;
  for (const auto& [problem, path] : listing.problems) {
    const bool is_folder = FileNameEquals(path, ".", [](PathProblem, const std::string&) {});
    if (problem == PathProblem::kNotChecked && is_folder) {
      folders.insert(path.substr(0, path.rfind('/')));
    }
  }
  return folders;
}

void AddPathFinding(const std::string& path, const char* message, Findings* findings) {
  findings->push_back({RuleId::kLoadUnreadable, {path}, std::nullopt, message});
}

void CheckPaths(const Listing& listing, Findings* findings) {
  const std::unordered_set<std::string> closed_folders = ClosedFolders(listing);
  for (const auto& [problem, path] : listing.problems) {
    if (problem == PathProblem::kNotOpened) {
      AddPathFinding(path, "the folder cannot be read, and the load ends before it stores anything",
                     findings);
    } else if (problem == PathProblem::kNotChecked) {
      const std::string folder = path.substr(0, path.rfind('/'));
      if (closed_folders.count(folder) == 0) {
        AddPathFinding(path, "the path leads nowhere, and the load passes it over", findings);
      } else if (path == folder + "/.") {
        AddPathFinding(folder,
                       "the folder cannot be searched, and the load passes over all that it holds",
                       findings);
      }
    }
  }
}

// True when a path that could not be looked at may be a file that the load would take.
bool MayHideFiles(const Survey& survey) {
  const auto& problems = survey.listing.problems;
  return std::any_of(problems.begin(), problems.end(),
                     [&](const auto& problem) { return MayHideFile(survey, problem.second); });
}

void AddNothingFinding(const std::string& message, Findings* findings) {
  findings->push_back({RuleId::kLoadNothing, {}, std::nullopt, message});
}

// --- Files --------------------------------------------------------------------------------------

// True when an open file cannot be read to its end. Of what is neither a file nor a folder, such as
// a pipe, that is not tried: it may have no end.
bool HasReadError(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) return true;
  if (!S_ISREG(status.st_mode)) return false;
  const File file(std::fopen(path.c_str(), "r"));
  if (!file) return true;
  std::array<char, 4096> buffer = {};
  while (std::fread(buffer.data(), 1, buffer.size(), file.get()) == buffer.size()) continue;
  return std::ferror(file.get()) != 0;
}

Finding SyntaxFinding(const std::string& path, const JsonFile& file) {
  Place place = {path};
  place.position = LocateError(ReadTextFile(path), file.error);
  return {RuleId::kLoadSyntax, place, std::nullopt,
          "the loader's parser refuses the text, and the load ends here: " +
              std::string(file.error.text)};
}

// What is wrong with a file whose root is no object.
Finding FileFinding(const std::string& path, const JsonFile& file) {
  if (file.root) {
    return {RuleId::kLoadNotObject,
            {path, ""},
            std::nullopt,
            std::string("the file holds an array where an object is needed") + kLoadEnds};
  }
  if (!file.is_open || HasReadError(path)) {
    return {RuleId::kLoadUnreadable,
            {path},
            std::nullopt,
            std::string("the file cannot be ") + (file.is_open ? "read" : "opened") + kLoadEnds};
  }
  return SyntaxFinding(path, file);
}

Finding AtInclusion(RuleId rule, const std::string& path, const std::string& message) {
  return {rule, {path, FileMemberPointer}, std::nullopt, message + kLoadEnds};
}

// What is wrong with an included file that was found and opened.
void CheckIncludedFile(const std::string& path, const Inclusion& inclusion, IncludedFaults* faults,
                       Findings* findings) {
  const std::string included = "the file to include, " + inclusion.path + ", ";
  if (inclusion.file.root) {
    Finding finding =
        AtInclusion(RuleId::kLoadNotObject, path, included + "holds an array, not an object");
    finding.related.push_back({{inclusion.path, ""}, "the array"});
    findings->push_back(std::move(finding));
  } else if (!inclusion.file.is_open || HasReadError(inclusion.path)) {
    findings->push_back(AtInclusion(RuleId::kLoadInclude, path, included + "cannot be read"));
  } else {
    const auto [fault, is_new] = faults->try_emplace(inclusion.path, findings->size());
    if (is_new) findings->push_back(SyntaxFinding(inclusion.path, inclusion.file));
    (*findings)[fault->second].related.push_back({{path, FileMemberPointer}, "includes the file"});
  }
}

void CheckInclusion(const std::string& path, const Inclusion& inclusion, IncludedFaults* faults,
                    Findings* findings) {
  const auto report = [&](const std::string& message) {
    findings->push_back(AtInclusion(RuleId::kLoadInclude, path, message));
  };
  switch (inclusion.end) {
    case InclusionEnd::kDone:
      return;
    case InclusionEnd::kNotString:
      return report("the value of \"&&File\" is no string");
    case InclusionEnd::kParentNotation:
      return report("the name of a file to include must not hold \"..\"");
    case InclusionEnd::kNotFound:
      return report("the file to include, " + inclusion.path + ", cannot be found or opened");
    case InclusionEnd::kNotObject:
      return CheckIncludedFile(path, inclusion, faults, findings);
    case InclusionEnd::kNotCleared:
    case InclusionEnd::kNotUpdated:
      return report("the members of the included file cannot be put in");
  }
}

void CheckFile(const TreeFile& file, IncludedFaults* faults, Findings* findings) {
  Resource resource = ReadResource(file.path, file.listed_key);
  if (resource.end == LoadEnd::kNotObject) {
    findings->push_back(FileFinding(file.path, resource.file));
  } else if (resource.end == LoadEnd::kBadId) {
    findings->push_back({RuleId::kLoadIdType,
                         {file.path, ChildPointer("", IdMember)},
                         std::nullopt,
                         "the \"@odata.id\" of the file is no string, and the load ends here "
                         "without a message"});
  } else {
    IncludeInResource(&resource);
    CheckInclusion(file.path, resource.inclusion, faults, findings);
  }
}

}  // namespace

void CheckListing(const Survey& survey, Findings* findings) {
  const std::string& path = survey.request.static_data_path;
  const std::string& name = survey.request.file_name;
  if (survey.listing.end == LoadEnd::kNoSuchPath) {
    AddNothingFinding(path +
                          " is neither a folder nor a file whose name ends in \".json\", and "
                          "the load fails",
                      findings);
    return;
  }
  CheckPaths(survey.listing, findings);
  const bool is_empty = survey.files.empty() && survey.listing.end == LoadEnd::kDone;
  if (!is_empty || MayHideFiles(survey)) return;
  AddNothingFinding("no file named " + name + ", ending in \".json\", is in " + path +
                        " or in a folder below, and the load succeeds without storing anything",
                    findings);
}

void CheckFiles(const Survey& survey, Findings* findings) {
  IncludedFaults faults;
  for (const TreeFile& file : survey.files) {
    if (file.end != LoadEnd::kDone) CheckFile(file, &faults, findings);
  }
}

}  // namespace ostrafel
