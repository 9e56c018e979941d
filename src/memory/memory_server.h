// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The store of store/server.h that is kept in memory. A load leaves in it what it would leave in a
// Redis server that held the same before. It is plain data: a program fills it before a load and
// reads it after. Names that operations are given end at a NUL, as they do on the way to a server.
#ifndef OSTRAFEL_MEMORY_MEMORY_SERVER_H_
#define OSTRAFEL_MEMORY_MEMORY_SERVER_H_

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "store/server.h"

namespace ostrafel {

/// Field -> value; never empty in a Server.
using Hash = std::map<std::string, std::string, std::less<>>;

/// The first element first; never empty in a Server.
using List = std::vector<std::string>;

/// A value of any other type. A load only finds, refuses or removes it, so that all are alike.
struct OtherType {
  bool operator==(const OtherType& /*other*/) const { return true; }
};

using Stored = std::variant<Hash, List, OtherType>;

/// What a value is; never kNone.
[[nodiscard]] KeyType KeyTypeOf(const Stored& value);

struct Server {
  std::map<std::string, Stored, std::less<>> keys;
  /// The searches of all keys so far (FindKeys). A real server looks at each of its keys every
  /// time.
  std::size_t searches = 0;
};

}  // namespace ostrafel

#endif  // OSTRAFEL_MEMORY_MEMORY_SERVER_H_
