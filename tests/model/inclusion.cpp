// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/inclusion.h"

#include <cstddef>
#include <cstdio>
#include <optional>

namespace model {
namespace {

bool CanBeOpened(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "r");
  if (file == nullptr) return false;
  std::fclose(file);
  return true;
}

std::string Extension(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  return dot == std::string::npos ? path : path.substr(dot + 1);
}

}  // namespace

bool ResolveInclusion(JsonValue& root, const std::string& include_root, std::string& err) {
  const JsonValue* file = FindMember(root, "&&File");
  if (file == nullptr) return true;
  if (file->kind != JsonValue::Kind::kString) {
    err += "The value of &&File is not string type.\n";
    return false;
  }
  const std::string name = file->text;
  if (name.find("..") != std::string::npos) {
    err += "Notation '..' is unacceptable.\n";
    return false;
  }
  const std::string target = include_root + name;
  if (!CanBeOpened(target)) {
    err += "File not found.\n";
    return false;
  }
  if (Extension(target) == "xml") return true;
  const std::optional<JsonValue> included = LoadJson(target, err);
  if (!included || included->kind != JsonValue::Kind::kObject) {
    err += "Unqualified JSON file - " + target + "\n";
    return false;
  }
  root = *included;
  SetMember(root, "&&File", JsonString(name));
  return true;
}

}  // namespace model
