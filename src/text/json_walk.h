// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A walk over a JSON text that knows where it is.
#ifndef OSTRAFEL_TEXT_JSON_WALK_H_
#define OSTRAFEL_TEXT_JSON_WALK_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace ostrafel {

/// Is told what stands in a text, in its order. An offset is that of a token's first byte.
class JsonVisitor {
 public:
  virtual ~JsonVisitor() = default;

  /// A member's name, without its escapes. The member's value comes next.
  virtual void OnName(const std::string& name, std::size_t offset) = 0;

  /// A value that is neither an object nor an array.
  virtual void OnScalar(std::size_t offset) = 0;

  /// An object or an array begins. What it holds comes next, then OnClose.
  virtual void OnOpen(bool is_array, std::size_t offset) = 0;

  /// The object or the array that began last, of those that are open, ends.
  virtual void OnClose() = 0;
};

/// Walks over text, which begins with no byte-order mark, to its end or to where it is no JSON.
/// Takes any number of levels.
void WalkJson(std::string_view text, JsonVisitor* visitor);

}  // namespace ostrafel

#endif  // OSTRAFEL_TEXT_JSON_WALK_H_
