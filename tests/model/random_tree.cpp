// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/random_tree.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace model {
namespace {

// A number below `limit`. The small bias does no harm here.
std::size_t Below(std::mt19937_64& generator, std::size_t limit) {
  return static_cast<std::size_t>(generator() % limit);
}

bool OneIn(std::mt19937_64& generator, std::size_t many) {
  return many != 0 && Below(generator, many) == 0;
}

const std::string& Pick(std::mt19937_64& generator, const std::vector<std::string>& pool) {
  return pool[Below(generator, pool.size())];
}

// Plain names come often, the ones with a catch (spaces, which make the link pattern of "A" match
// the links of "A B"; glob characters; slashes; indices; reserved names) now and then.
const std::vector<std::string> kPlainNames = {"A", "B", "Status", "Links"};
const std::vector<std::string> kCatchyNames = {
    "A B",  "A ",   " ",    "",    "A*", "?",        "[A-C]",       "[^A]",
    "\\A",  "[",    "A//B", "A/",  "/A", "A/B",      "0",           "1",
    "é",    "A\"B", "&&",   "&&A", "a",  "&&File x", "@odata.type", "Name@Redfish.Copy",
    "A\nB",
};
const std::vector<std::string> kReservedNames = {
    "&&ETag", "&&Privileges", "&&Async", "&&AllowMethod", "&&DateTime", "&&SensitiveData",
};
const std::vector<std::string> kFolderNames = {
    "A B", "A*", "[A-C]", "&&ETag", "0", ".hidden", "v1",
};
const std::vector<std::string> kStrings = {
    "\"\"",
    "\"x\"",
    "\"two words\"",
    "\"0\"",
    "\"a\\\"b\\\\c\"",
    "\"\\\\\"",
    "\"\\\"\"",
    "\"line\\nbreak\\ttab\"",
    "\"Grüße € 🙂\"",
    "\"\\u00e9\\ud83d\\ude42\"",
    "\"W/\\\"1\\\"\"",
    "\"&&Object \"",
    "\"&&ObjectRef /x\"",
    "\"%s %d %\"",
};
const std::vector<std::string> kNumbers = {
    "0",
    "1",
    "2",
    "3",
    "-7",
    "42",
    "2147483647",
    "2147483648",
    "-2147483648",
    "-2147483649",
    "3000000000",
    "-3000000000",
    "9223372036854775807",
    "-9223372036854775808",
    "-0",
    "0.0",
    "-0.0",
    "5.0",
    "3.5",
    "0.1",
    "100.125",
    "1e20",
    "1E-7",
    "0.0000004",
    "-0.0000005",
    "12345.678901",
    "1.0e3",
    "1e300",
};
const std::vector<std::string> kLiterals = {"true", "false", "null"};

std::string JsonText(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '\n') {
      quoted += "\\n";
      continue;
    }
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

// Two in three are folders that a member of the parent's document may be named after.
const std::string& FolderName(std::mt19937_64& generator) {
  return Pick(generator, OneIn(generator, 3) ? kFolderNames : kPlainNames);
}

// Grows one document.
class DocumentGrower {
 public:
  DocumentGrower(std::mt19937_64& generator, const RandomTreeOptions& options, std::string key)
      : generator_(generator), options_(options), key_(std::move(key)) {}

  std::string Root() {
    std::vector<std::string> members;
    if (OneIn(generator_, 3)) members.push_back(IdMember());
    if (!options_.include_files.empty() && OneIn(generator_, options_.include_one_in)) {
      members.push_back("\"&&File\": " + JsonText(Pick(generator_, options_.include_files)));
    }
    if (!OneIn(generator_, 30)) AddMembers(members, 1 + Below(generator_, options_.members), 0);
    if (options_.bulk != 0) members.push_back("\"Bulk\": " + Bulk());
    // The bulk and the id stand anywhere: what comes after them matters.
    for (std::size_t i = members.size(); i > 1; --i) {
      std::swap(members[i - 1], members[Below(generator_, i)]);
    }
    return Braced(members);
  }

 private:
  static std::string Joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
    return text;
  }

  static std::string Braced(const std::vector<std::string>& members) {
    return "{" + Joined(members) + "}";
  }

  std::string Name() {
    const std::size_t choice = Below(generator_, 20);
    if (choice < 14) return Pick(generator_, kPlainNames);
    return Pick(generator_, choice < 18 ? kCatchyNames : kReservedNames);
  }

  // A key that something else may be stored under as well: a folder's, a derived one, a twin.
  std::string Id() {
    if (OneIn(generator_, options_.empty_id_one_in)) return "";
    const std::string folder = "/" + FolderName(generator_);
    switch (Below(generator_, 9)) {
      case 0:
        return options_.uri;
      case 1:
        return key_;
      case 2:
      case 3:
        return options_.uri + folder;
      case 4:
        return options_.uri + folder + "/" + Name();
      case 5:
        return key_ + "/" + Name();
      case 6:
        return "&&" + key_ + "/" + Name();
      case 7:
        return key_ + "//" + Name() + "/";
      default:
        return "/elsewhere/" + Name();
    }
  }

  std::string IdMember() {
    if (OneIn(generator_, options_.bad_id_one_in)) {
      return "\"@odata.id\": " + (OneIn(generator_, 2) ? Pick(generator_, kNumbers) : "[]");
    }
    return "\"@odata.id\": " + JsonText(Id());
  }

  void AddMembers(std::vector<std::string>& members, std::size_t count, std::size_t depth) {
    for (std::size_t i = 0; i < count; ++i) {
      // In two statements: the order of evaluation inside one would be the compiler's.
      const std::string name = JsonText(Name());
      members.push_back(name + ": " + Value(depth));
    }
  }

  std::string Scalar() {
    switch (Below(generator_, 4)) {
      case 0:
        return Pick(generator_, kNumbers);
      case 1:
        return Pick(generator_, kLiterals);
      default:
        return Pick(generator_, kStrings);
    }
  }

  std::string Link() { return "{" + IdMember() + "}"; }

  std::string Object(std::size_t depth) {
    if (OneIn(generator_, 8)) return "{}";
    std::vector<std::string> members;
    if (OneIn(generator_, 3)) members.push_back(IdMember());
    AddMembers(members, 1 + Below(generator_, options_.members), depth);
    if (OneIn(generator_, 2)) std::swap(members.front(), members.back());
    return Braced(members);
  }

  std::string Array(std::size_t depth) {
    if (OneIn(generator_, 8)) return "[]";
    const std::size_t size = 1 + Below(generator_, options_.members);
    const std::size_t style = Below(generator_, 4);
    std::vector<std::string> elements;
    for (std::size_t i = 0; i < size; ++i) {
      if (style == 0) {
        elements.push_back(Scalar());
      } else if (style == 1) {
        elements.push_back(Link());
      } else if (style == 2 && OneIn(generator_, 2)) {
        elements.push_back(std::to_string(Below(generator_, size)));  // as if it were an index
      } else {
        elements.push_back(Value(depth));
      }
    }
    return "[" + Joined(elements) + "]";
  }

  std::string Value(std::size_t depth) {
    const std::size_t choice = Below(generator_, 10);
    if (choice < 3) return Scalar();
    if (choice < 5) return Link();
    if (depth >= options_.depth) return choice < 8 ? "{}" : "[]";
    return choice < 8 ? Object(depth + 1) : Array(depth + 1);
  }

  // Many elements, and now and then one that reads the store between them.
  std::string BulkArray() {
    std::vector<std::string> elements;
    for (std::size_t i = 0; i < options_.bulk; ++i) {
      elements.push_back(OneIn(generator_, 150) ? Value(options_.depth - options_.depth / 2)
                                                : std::to_string(Below(generator_, options_.bulk)));
    }
    return "[" + Joined(elements) + "]";
  }

  // Groups of 50 members: the server lists a large hash ten fields at a time, once for each member
  // that an update rewrites, so that one object of thousands would take minutes.
  std::string BulkObject() {
    std::vector<std::string> groups;
    for (std::size_t size = 0; size < options_.bulk; size += 50) {
      std::vector<std::string> members;
      for (std::size_t i = 0; i < 50; ++i) {
        members.push_back(JsonText("m" + std::to_string(i)) + ": " +
                          (OneIn(generator_, 20) ? Value(options_.depth) : Scalar()));
      }
      groups.push_back(JsonText("g" + std::to_string(groups.size())) + ": " + Braced(members));
    }
    return Braced(groups);
  }

  std::string BulkOfObjects() {
    std::vector<std::string> elements;
    for (std::size_t size = 0; size < options_.bulk; size += 4) {
      const std::string scalar = Scalar();
      const std::string link = Link();
      elements.push_back("{\"A\": " + scalar + ", \"B\": " + link + ", \"C\": [" + Scalar() + "]}");
    }
    return "[" + Joined(elements) + "]";
  }

  std::string Bulk() {
    switch (Below(generator_, 3)) {
      case 0:
        return BulkArray();
      case 1:
        return BulkObject();
      default:
        return BulkOfObjects();
    }
  }

  std::mt19937_64& generator_;
  const RandomTreeOptions& options_;
  std::string key_;
};

void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
}

}  // namespace

std::string RandomDocument(std::mt19937_64& generator, const RandomTreeOptions& options,
                           const std::string& key) {
  return DocumentGrower(generator, options, key).Root();
}

Tree RandomTree(std::mt19937_64& generator, const RandomTreeOptions& options) {
  // Folders as their paths below the top, each with its leading slash.
  std::vector<std::string> folders = {""};
  const std::size_t wanted = 1 + Below(generator, options.folders);
  for (std::size_t i = 1; i < wanted; ++i) {
    const std::string parent = folders[Below(generator, folders.size())];
    const std::string folder = parent + "/" + FolderName(generator);
    if (std::find(folders.begin(), folders.end(), folder) == folders.end()) {
      folders.push_back(folder);
    }
  }
  const std::size_t bulky = Below(generator, folders.size());

  RandomTreeOptions slim = options;
  slim.bulk = 0;
  Tree tree;
  for (std::size_t i = 0; i < folders.size(); ++i) {
    TreeFolder& folder = tree.emplace_back(TreeFolder{folders[i], std::nullopt});
    const bool has_bulk = options.bulk != 0 && i == bulky;
    if (!has_bulk && OneIn(generator, options.bare_folder_one_in)) continue;
    folder.document =
        RandomDocument(generator, has_bulk ? options : slim, options.uri + folder.path);
  }
  return tree;
}

void WriteTree(const Tree& tree, const std::string& directory, const std::string& file_name) {
  for (const TreeFolder& folder : tree) {
    std::filesystem::create_directories(directory + folder.path);
    if (folder.document) {
      WriteFile(directory + folder.path + "/" + file_name, *folder.document);
    }
  }
}

void WriteRandomTree(std::mt19937_64& generator, const std::string& directory,
                     const RandomTreeOptions& options) {
  WriteTree(RandomTree(generator, options), directory, options.file_name);
}

}  // namespace model
