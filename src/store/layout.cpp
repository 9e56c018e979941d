#include "store/layout.h"

#include <algorithm>

const std::set<std::string> ReservedPropertySet = {
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

bool IsReservedProperty(const std::string& name) { return ReservedPropertySet.count(name) != 0; }

void NormalizeKey(std::string& key) {
  const auto both_slashes = [](char a, char b) { return a == '/' && b == '/'; };
  key.erase(std::unique(key.begin(), key.end(), both_slashes), key.end());
  if (key.compare(0, 2, "&&") != 0) key.insert(0, "&&");
}

std::string DerivedKey(const std::string& parent_key, const std::string& name) {
  std::string key;
  key.reserve(parent_key.size() + name.size() + 3);  // a slash and, at most, the prefix
  key.append(parent_key).append("/").append(name);
  NormalizeKey(key);
  return key;
}

std::string ReferenceField(const char* marker, const std::string& name, const std::string& target) {
  return marker + name + " " + target;
}

std::string SubtreePattern(const std::string& key) {
  const bool ends_with_slash = !key.empty() && key.back() == '/';
  return key + (ends_with_slash ? "*" : "/*");
}
