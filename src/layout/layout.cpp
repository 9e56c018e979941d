// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/layout.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <stdexcept>

#include "base/affixes.h"

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

std::string Join(const Pieces& pieces) {
  std::size_t size = 0;
  for (const std::string_view piece : pieces) size += piece.size();
  std::string text;
  text.reserve(size);
  for (const std::string_view piece : pieces) text.append(piece);
  return text;
}

Pieces ReferenceRecord(ParentKind parent, std::string_view marker, std::string_view name,
                       std::string_view target) {
  if (parent == ParentKind::kList) return {marker, target};
  return {marker, name, " ", target};
}

bool IsReferenceRecord(std::string_view element) {
  constexpr std::array<std::string_view, 3> markers = {ArrayMarker, ObjectMarker, ObjectRefMarker};
  return std::any_of(markers.begin(), markers.end(), [&](std::string_view marker) {
    return element.size() > marker.size() && StartsWith(element, marker);
  });
}

std::string LinkPattern(std::string_view name) {
  return Join(ReferenceRecord(ParentKind::kHash, ObjectRefMarker, name, "*"));
}

bool IsReservedProperty(std::string_view name) {
  // All of them begin like that, and hardly any other member does.
  return StartsWith(name, InternalPrefix) && ReservedPropertySet.count(name) != 0;
}

void NormalizeKey(std::string& key) {
  // Keys are strings without NUL, and hardly any has two slashes in a row.
  if (std::strstr(key.c_str(), "//") != nullptr) {
    const auto both_slashes = [](char a, char b) { return a == '/' && b == '/'; };
    key.erase(std::unique(key.begin(), key.end(), both_slashes), key.end());
  }
  if (!StartsWith(key, InternalPrefix)) key.insert(0, InternalPrefix);
}

std::string DerivedKey(const std::string& parent_key, const std::string& name) {
  std::string key;
  key.reserve(InternalPrefix.size() + parent_key.size() + 1 + name.size());
  key.append(parent_key).append("/").append(name);
  NormalizeKey(key);
  return key;
}

std::string SubtreeStart(const std::string& key) { return EndsWith(key, "/") ? key : key + "/"; }

std::string SubtreePattern(const std::string& key) { return SubtreeStart(key) + "*"; }

bool IsTwinPattern(std::string_view pattern) { return StartsWith(pattern, InternalPrefix); }

std::string TwinPattern(const std::string& pattern) {
  std::string twin(InternalPrefix);
  return twin += pattern;
}

std::array<std::string, 3> TreePatterns(const std::string& uri) {
  if (uri.empty()) throw std::out_of_range("an empty URI names no tree");
  const std::string below = SubtreePattern(uri);
  return {uri, below, TwinPattern(below)};
}

}  // namespace ostrafel
