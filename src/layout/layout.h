// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// How a resource lies in Redis. {"Name": "A", "Status": {"State": "on"}, "Fans": [3, {"x": true}],
// "Chassis": {"@odata.id": "/c"}} at /r becomes
//
//   hash  /r              Name                         "A"
//                         &&Object Status &&/r/Status  (empty)
//                         &&Array Fans &&/r/Fans       (empty)
//                         &&ObjectRef Chassis /c       (empty)
//   hash  &&/r/Status     State                        "on"
//   list  &&/r/Fans       3
//                         &&Object &&/r/Fans/1
//   hash  &&/r/Fans/1     x                            true
//
// - An object's members are the fields of a hash, an array's elements the values of a list. A
//   scalar is the string that RenderValue makes of it.
// - A nested object or array has a key of its own and a reference record in its parent. In a hash
//   the record is a field whose name holds marker, member name and target, with an empty value, so
//   that one HKEYS shows every child; in a list it is a value of marker and target.
// - A nested object that has "@odata.id" beside other members lies under that id, verbatim, instead
//   of a derived key. One that has nothing but an "@odata.id" string is a link: a reference
//   record, no key.
// - Empty objects and arrays have a reference record and no key: Redis has no empty hash or list.
//
// Readers of the store rely on every byte of this, blanks included.
#ifndef OSTRAFEL_LAYOUT_LAYOUT_H_
#define OSTRAFEL_LAYOUT_LAYOUT_H_

#include <array>
#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace ostrafel {

/// Points to the hash of a nested object. The blank that ends each marker is part of it.
inline constexpr const char* ObjectMarker = "&&Object ";
/// Points to another resource, by its "@odata.id".
inline constexpr const char* ObjectRefMarker = "&&ObjectRef ";
/// Points to the list of an array.
inline constexpr const char* ArrayMarker = "&&Array ";

/// In front of derived keys, of reserved members and of markers.
inline constexpr std::string_view InternalPrefix = "&&";

/// A hash holds an object's members, a list an array's elements.
enum class ParentKind { kHash, kList };

/// A string in pieces, to be joined where it is kept. The pieces are borrowed; those left out are
/// empty.
using Pieces = std::array<std::string_view, 4>;

/// The pieces, joined.
[[nodiscard]] std::string Join(const Pieces& pieces);

/// The reference record that points to target: in a hash the field marker + name + " " + target, in
/// a list the value marker + target.
[[nodiscard]] Pieces ReferenceRecord(ParentKind parent, std::string_view marker,
                                     std::string_view name, std::string_view target);

/// True when element, a value of a list, is a reference record. A marker with nothing after it is
/// a plain value.
[[nodiscard]] bool IsReferenceRecord(std::string_view element);

/// The glob pattern, as HSCAN MATCH takes it, of the fields that are links of the member name. It
/// also matches the links of a member whose name goes on after a blank.
[[nodiscard]] std::string LinkPattern(std::string_view name);

/// Members whose string values are stored escaped like any string but without the outer quotes.
extern const std::set<std::string, std::less<>> ReservedPropertySet;

/// True when name is, byte for byte, in ReservedPropertySet.
[[nodiscard]] bool IsReservedProperty(std::string_view name);

/// Makes a derived key of a path, in place: every run of slashes becomes one, and "&&" is put in
/// front unless it is there already. The prefix tells a resource's parts from resources.
void NormalizeKey(std::string& key);

/// The key of a nested object or array: parent_key + "/" + name, normalized. For an element of an
/// array, parent_key is the list and name the decimal index.
[[nodiscard]] std::string DerivedKey(const std::string& parent_key, const std::string& name);

/// What the keys below key begin with: key + "/", or key when it ends with a slash.
[[nodiscard]] std::string SubtreeStart(const std::string& key);

/// The glob pattern, as SCAN MATCH and KEYS take it, of all keys below key: SubtreeStart and "*".
/// Glob characters in key keep their meaning.
[[nodiscard]] std::string SubtreePattern(const std::string& key);

/// True when pattern, of a subtree, matches derived keys only: it begins with "&&".
[[nodiscard]] bool IsTwinPattern(std::string_view pattern);

/// "&&" + pattern: the pattern of the twins of the keys that pattern matches. The parts of a
/// resource lie below the twin of its key.
[[nodiscard]] std::string TwinPattern(const std::string& pattern);

/// What a create removes: the patterns uri, uri/*, &&uri/* or, for a uri that ends with a slash,
/// uri, uri*, &&uri*. So the key "&&" + uri itself is kept without a final slash and removed with
/// one. Raises out_of_range for an empty uri.
[[nodiscard]] std::array<std::string, 3> TreePatterns(const std::string& uri);

}  // namespace ostrafel

#endif  // OSTRAFEL_LAYOUT_LAYOUT_H_
