// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Where in a JSON text values stand, for texts that jansson has accepted, and where it refused one.
#ifndef OSTRAFEL_TEXT_JSON_POSITIONS_H_
#define OSTRAFEL_TEXT_JSON_POSITIONS_H_

#include <jansson.h>

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace ostrafel {

/// A place in a text, both counted from 1: lines end with "\n"; columns are characters (Unicode
/// code points), and a byte-order mark at the start is none.
struct Position {
  std::size_t line = 0;
  std::size_t column = 0;
};

/// Where a value stands: the start of its first token, and of the name that it is a member by; an
/// element and the root have no name, and there name is value.
struct ValuePosition {
  Position name;
  Position value;
};

/// Finds the values of these JSON pointers (RFC 6901). Where a name stands twice in an object, the
/// last one counts, and an overwritten value holds nothing. What is not found is left out, as is
/// all from where the text is no JSON.
[[nodiscard]] std::map<std::string, ValuePosition> LocateValues(
    std::string_view text, const std::set<std::string>& pointers);

/// A member whose name stands more than once in its object.
struct DuplicateMember {
  std::string pointer;
  std::vector<Position> names;  ///< Of every place, in order. The last one counts.
};

/// The duplicate members of all objects that count, in the order of their second places; each
/// pointer once. What an overwritten value holds does not count. Cheap where there are none, as a
/// text is only parsed when it may hold some.
[[nodiscard]] std::vector<DuplicateMember> FindDuplicateMembers(std::string_view text);

/// The start of the token at which jansson refused the text; where the text ends too early, its
/// end; what is not UTF-8 outside of a string, its first byte. error is jansson's, which holds how
/// much of the text it had read, a byte-order mark not counted. Always a position in the text or at
/// its end.
[[nodiscard]] Position LocateError(std::string_view text, const json_error_t& error);

}  // namespace ostrafel

#endif  // OSTRAFEL_TEXT_JSON_POSITIONS_H_
