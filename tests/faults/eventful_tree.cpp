// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "faults/eventful_tree.h"

#include <array>
#include <cctype>

#include "support/sandbox.h"

namespace eventful {
namespace {

constexpr std::array<const char*, 6> kShapes = {"Scalar", "Object",  "Link",
                                                "List",   "Objects", "Inline"};

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

std::string Value(const std::string& shape, const std::string& name) {
  std::string link = R"({"@odata.id": "/redfish/v1/Linked/)" + name + "\"}";
  if (shape == "Scalar") return Quoted("a \\\"scalar\\\" of " + name);
  if (shape == "Object") return R"({"A": "x"})";
  if (shape == "Link") return link;
  if (shape == "List") return R"([1, "two", null])";
  if (shape == "Objects") return R"([{"A": 1}, )" + link + "]";
  return R"({"@odata.id": "/redfish/v1/Inline/)" + name + R"(", "A": true})";
}

std::string Changes(Generation generation) {
  std::string text = R"({"@odata.id": "/redfish/v1/Changes")";
  for (const std::string from : kShapes) {
    for (const std::string to : kShapes) {
      const std::string name = from + "_" + to;
      text += ", " + Quoted(name) + ": ";
      text += Value(generation == Generation::kFirst ? from : to, name);
    }
  }
  return text + "}";
}

}  // namespace

const std::set<std::string> kEveryCommand = {"AUTH", "KEYS",  "DEL",     "TYPE",   "LINDEX",
                                             "SCAN", "HSCAN", "HEXISTS", "UNLINK", "LREM",
                                             "HDEL", "HSET",  "RPUSH"};

std::string CommandName(const model::Command& command) {
  std::string name = command.front();
  for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return name;
}

void WriteFiles(const TempDirectory& folder, Generation generation) {
  const std::string number = generation == Generation::kFirst ? "1" : "2";
  (void)folder.Write("index.json", R"({"Count": )" + number +
                                       R"(, "Real": 2.5, "On": true, "Off": false, "None": null,
      "&&ETag": "W/\"1\"", "&&Async": true, "&&Privileges": ["Login"],
      "Status": {"State": "Enabled", "Deep": {"Deeper": [[[1]], []]}},
      "No members": {}, "No elements": [], "*": "a glob"})");
  (void)folder.Write("Changes/index.json", Changes(generation));
  (void)folder.Write("Included/index.json", R"({"&&File": "included.json", "Lost": 1})");
  Include("included.json", R"({"@odata.id": "/ignored", "Generation": )" + number + "}");
}

std::string SmallDocument(Generation generation) {
  if (generation == Generation::kFirst) return R"({"A": {"B": 1}, "L": [1], "S": 1})";
  return R"({"A": {"@odata.id": "/m"}, "L": [{}], "S": 2, "I": {"@odata.id": "/redfish/v1/I",
      "X": 1}})";
}

void AddStaleKeys(const std::string& id, model::Store* store) {
  (*store)[id].value = model::List{"&&Object &&" + id + "/0"};
  (*store)["&&" + id + "/0"].value = model::Hash{{"Old", "1"}};
  (*store)[id + "/0"].value = model::Hash{{"Old", "2"}};
}

}  // namespace eventful
