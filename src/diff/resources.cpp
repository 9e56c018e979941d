// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/resources.h"

#include <cstddef>

#include "layout/layout.h"
#include "layout/record_parts.h"

namespace ostrafel {

std::string ResourceOf(const std::string& key, const Server& stored, const Server& wanted) {
  if (!IsDerivedKey(key)) return key;
  std::string base = key.substr(InternalPrefix.size());
  const auto is_key = [&](const std::string& name) {
    return stored.keys.count(name) != 0 || wanted.keys.count(name) != 0;
  };
  for (std::size_t slash = base.rfind('/'); slash != std::string::npos && slash != 0;
       slash = base.rfind('/', slash - 1)) {
    std::string parent = base.substr(0, slash);
    if (is_key(parent)) return parent;
    parent += '/';
    if (is_key(parent)) return parent;
  }
  return base;
}

}  // namespace ostrafel
