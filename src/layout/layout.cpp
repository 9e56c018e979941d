// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/layout.h"

#include <algorithm>
#include <cstring>

namespace ostrafel {

const std::set<std::string, std::less<>> ReservedPropertySet = {
    "&&AllowMethod",
    "&&CRUDprefix",
    "&&POSTValidation",
    "&&PATCHValidation",
    "&&PUTValidation",
    "&&Validation",
    "&&SensitiveData",
    "&&ETag",
    "&&Async",
    "&&BlockCSRGeneration",
    "&&BlockReplaceCertificate",
    "&&OwnerName",
    "&&Privileges",
    "&&AllowDeepMethod",
    "&&DateTime",
};

bool IsReservedProperty(std::string_view name) {
  // All of them begin like that, and nearly no other member does.
  return name.substr(0, 2) == "&&" && ReservedPropertySet.count(name) != 0;
}

void NormalizeKey(std::string& key) {
  // Keys are texts without NUL, and hardly any has two slashes in a row.
  if (std::strstr(key.c_str(), "//") != nullptr) {
    const auto both_slashes = [](char a, char b) { return a == '/' && b == '/'; };
    key.erase(std::unique(key.begin(), key.end(), both_slashes), key.end());
  }
  if (key.compare(0, 2, "&&") != 0) key.insert(0, "&&");
}

std::string DerivedKey(const std::string& parent_key, const std::string& name) {
  std::string key;
  key.reserve(parent_key.size() + name.size() + 3);  // a slash and, at most, the prefix
  key.append(parent_key).append("/").append(name);
  NormalizeKey(key);
  return key;
}

std::string ReferenceField(std::string_view marker, std::string_view name,
                           std::string_view target) {
  std::string field;
  field.reserve(marker.size() + name.size() + 1 + target.size());
  field.append(marker);
  AppendRecordEnd(&field, name, target);
  return field;
}

void AppendRecordEnd(std::string* record, std::string_view name, std::string_view target) {
  record->append(name).append(" ").append(target);
}

std::string SubtreePattern(const std::string& key) {
  const bool ends_with_slash = !key.empty() && key.back() == '/';
  return key + (ends_with_slash ? "*" : "/*");
}

}  // namespace ostrafel
