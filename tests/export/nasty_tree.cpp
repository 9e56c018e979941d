// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/nasty_tree.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "layout/layout.h"
#include "text/json_text.h"

namespace ostrafel {

namespace {

using Texts = std::vector<std::string>;

const Texts kPlainNames = {"A", "B", "C", "Status", "Links", "Id", "Name", "Members"};
const Texts kNames = {"",
                      " ",
                      "A B",
                      "A ",
                      " A",
                      "A /x",
                      "A /x B",
                      "A/B",
                      "A//B",
                      "/",
                      "/A",
                      "//",
                      "A/",
                      "&&",
                      "&&A",
                      "&&/redfish/A",
                      "A &&/redfish/A",
                      "&&Object ",
                      "&&Object A",
                      "&&Object A &&/redfish/A",
                      "&&ObjectRef A /x",
                      "&&ObjectRef A x",
                      "&&Array A b",
                      "&&Array ",
                      "@odata.type",
                      "@odata.id ",
                      "@odata.id@x",
                      "A@odata.count",
                      "0",
                      "1",
                      "..",
                      ".",
                      "index.json",
                      "\x01",
                      "\x7f",
                      "\"",
                      "\\",
                      "*",
                      "[A]",
                      "\xC3\xA9"};
const Texts kReservedNames = {"&&ETag", "&&Async", "&&Privileges", "&&DateTime"};
const Texts kFolders = {"A B",       "&&A", "%41", "%1",  ".A",  "A#B", "A?B", "\xC3\xA9", "\xFF",
                        "@odata.id", "*",   "\\",  "A:B", "CON", "a",   "A.",  "\n"};
const Texts kScalars = {R"("")",
                        R"("x")",
                        R"("a\"b\\c")",
                        R"("\\")",
                        R"("\n\u0001\u007f\u2028\ud83d\ude00")",
                        R"("&&Object /x")",
                        R"("&&Array ")",
                        "0",
                        "-0",
                        "-7",
                        "999999999",
                        "2147483646",
                        "-2147483647",
                        "0.0",
                        "-0.0",
                        "5.0",
                        "0.1",
                        "1e-9",
                        "-1e-9",
                        "1e20",
                        "1.7976931348623157e308",
                        "12345.678901234",
                        "true",
                        "false",
                        "null"};

class Grower {
 public:
  Grower(std::mt19937_64& generator, std::string uri)
      : generator_(generator), uri_(std::move(uri)) {
    // What no tree brings back needs to be rare: else hardly any tree would be without a loss.
    nastiness_ = 2 + Below(40);
  }

  model::Tree Grow() {
    Texts folders = {""};
    for (std::size_t i = Below(6); i > 0; --i) {
      const std::string parent = Pick(folders);
      folders.push_back(parent + "/" + Pick(OneIn(nastiness_) ? kFolders : kPlainNames));
    }
    std::sort(folders.begin(), folders.end());
    folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
    for (const std::string& folder : folders) keys_.push_back(KeyOf(uri_, folder));
    model::Tree tree;
    for (std::size_t i = 0; i < folders.size(); ++i) {
      key_ = keys_[i];
      place_ = DerivedKey(key_, "");
      model::TreeFolder& made = tree.emplace_back(model::TreeFolder{folders[i], std::nullopt});
      if (!OneIn(10)) made.document = Object(0);
    }
    return tree;
  }

 private:
  static std::string KeyOf(const std::string& uri, const std::string& folder) {
    if (folder.empty()) return uri;
    return (!uri.empty() && uri.back() == '/' ? uri.substr(0, uri.size() - 1) : uri) + folder;
  }

  std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(generator_() % limit); }

  bool OneIn(std::size_t many) { return Below(many) == 0; }

  const std::string& Pick(const Texts& pool) { return pool[Below(pool.size())]; }

  static std::string Quoted(const std::string& string) {
    std::string text;
    AppendJsonString(string, &text);
    return text;
  }

  const std::string& Name() {
    if (OneIn(nastiness_)) return Pick(OneIn(4) ? kReservedNames : kNames);
    return Pick(kPlainNames);
  }

  // An id that something else may have, or that looks odd.
  std::string Id() {
    const std::string& key = Pick(keys_);
    if (!OneIn(nastiness_)) {
      switch (Below(4)) {
        case 0:
          return key;
        case 1:
          return key_;
        case 2:
          return key_ + "/" + Pick(kPlainNames);
        default:
          return "/elsewhere/" + Pick(kPlainNames);
      }
    }
    switch (Below(16)) {
      case 0:
        return key + "#/" + Name();
      case 1:
        return key + "?a=" + Name();
      case 2:
        return key + "//" + Name();
      case 3:
        return key + "/";
      case 4:
        return key + "/../" + Name();
      case 5:
        return key + "/.";
      case 6:
        return "&&" + key + "/" + Name();
      case 7:
        return "&&" + key;
      case 8:
        return "";
      case 9:
        return Name();
      case 10:
        return key + " /x";
      case 11:
        return key + "/index.json";
      case 12:
        return key + "/" + Name() + "/" + Name();
      case 13:
      case 14:
        return AroundPlace();
      default:
        return key + "/" + std::string(300, 'x');
    }
  }

  // An id that holds, between blanks, the key that the object would have without it: its record may
  // be that of another member, whose name ends where the id goes on.
  std::string AroundPlace() {
    const std::string end = OneIn(2) ? "/o" : "x";
    return end + " " + place_ + " " + end;
  }

  // U+FFFD for the bytes of a folder's name that are no UTF-8: JSON has no others.
  std::string IdMember() {
    std::string id = Id();
    for (std::size_t at = id.find('\xFF'); at != std::string::npos; at = id.find('\xFF', at)) {
      id.replace(at, 1, "\xEF\xBF\xBD");
    }
    return R"("@odata.id": )" + Quoted(id);
  }

  std::string Object(std::size_t depth) {
    const std::string place = depth == 0 ? key_ : place_;
    Texts members;
    if (OneIn(depth == 0 ? 5 : 4)) members.push_back(IdMember());
    for (std::size_t i = Below(5); i > 0; --i) {
      const std::string name = Name();
      place_ = DerivedKey(place, name);
      std::string member = Quoted(name) + ": ";
      members.push_back(member += Value(depth + 1));
    }
    for (std::size_t i = members.size(); i > 1; --i) std::swap(members[i - 1], members[Below(i)]);
    return "{" + Joined(members) + "}";
  }

  std::string Array(std::size_t depth) {
    const std::string place = place_;
    Texts elements;
    for (std::size_t i = Below(4); i > 0; --i) {
      place_ = DerivedKey(place, std::to_string(elements.size()));
      elements.push_back(Value(depth + 1));
    }
    return "[" + Joined(elements) + "]";
  }

  std::string Value(std::size_t depth) {
    const std::size_t kind = Below(10);
    if (kind < 3 || (depth > 5 && kind < 8)) {
      if (OneIn(10 * nastiness_)) return "2147483648";
      return Pick(kScalars);
    }
    if (kind < 5) return "{" + IdMember() + "}";
    return kind < 8 ? Object(depth) : Array(depth);
  }

  static std::string Joined(const Texts& texts) {
    std::string joined;
    for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
    return joined;
  }

  std::mt19937_64& generator_;
  std::string uri_;
  std::size_t nastiness_ = 1;  // one in so many is nasty
  Texts keys_;                 // of the folders
  std::string key_;            // of the document that grows
  std::string place_;          // the derived key of the value that grows, where no id says another
};

}  // namespace

model::Tree NastyTree(std::mt19937_64& generator, const std::string& uri) {
  return Grower(generator, uri).Grow();
}

}  // namespace ostrafel
