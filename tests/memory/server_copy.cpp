// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "memory/server_copy.h"

#include <set>
#include <sstream>

namespace ostrafel {

namespace {

std::multiset<std::string> Lines(const std::string& text) {
  std::multiset<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.insert(line);
  return lines;
}

std::string Without(std::multiset<std::string> lines, const std::multiset<std::string>& others,
                    const std::string& mark) {
  for (const std::string& line : others) {
    const auto found = lines.find(line);
    if (found != lines.end()) lines.erase(found);
  }
  std::string text;
  for (const std::string& line : lines) text += mark + line + "\n";
  return text;
}

}  // namespace

Server CopyOf(const model::Store& contents) {
  Server server;
  for (const auto& [key, stored] : contents) {
    if (const auto* hash = std::get_if<model::Hash>(&stored.value)) {
      server.keys[key] = Hash(hash->begin(), hash->end());
    } else if (const auto* list = std::get_if<model::List>(&stored.value)) {
      server.keys[key] = List(*list);
    } else {
      server.keys[key] = OtherType();
    }
  }
  return server;
}

std::string Dump(const Server& server) {
  std::string text;
  for (const auto& [key, stored] : server.keys) {
    if (const Hash* hash = std::get_if<Hash>(&stored)) {
      if (hash->empty()) text += "empty hash | " + key + "\n";
      for (const auto& [field, value] : *hash) {
        text += "hash | " + key + " | " + field + " | " + value + "\n";
      }
    } else if (const List* list = std::get_if<List>(&stored)) {
      if (list->empty()) text += "empty list | " + key + "\n";
      for (const std::string& element : *list) text += "list | " + key + " | " + element + "\n";
    } else {
      text += "other | " + key + "\n";
    }
  }
  return text;
}

std::string Difference(const std::string& real, const std::string& in_memory) {
  if (real == in_memory) return "";
  const std::multiset<std::string> real_lines = Lines(real);
  const std::multiset<std::string> memory_lines = Lines(in_memory);
  const std::string lines = Without(real_lines, memory_lines, "  only on the server: ") +
                            Without(memory_lines, real_lines, "  only in memory: ");
  return "the stores differ\n" + (lines.empty() ? "  in their order\n" : lines);
}

}  // namespace ostrafel
