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
//   scalar is the text that RenderValue makes of it.
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

/// The member that names a resource, or links to one.
inline constexpr const char* IdMember = "@odata.id";

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

/// The field of a parent hash that points to target: marker + name + " " + target.
[[nodiscard]] std::string ReferenceField(std::string_view marker, std::string_view name,
                                         std::string_view target);

/// Appends what such a field holds behind its marker: name + " " + target.
void AppendRecordEnd(std::string* record, std::string_view name, std::string_view target);

/// The glob pattern, as SCAN MATCH takes it, of all keys below key: key + "/*", or key + "*" when
/// key ends with a slash. Glob characters in key keep their meaning.
[[nodiscard]] std::string SubtreePattern(const std::string& key);

}  // namespace ostrafel

#endif  // OSTRAFEL_LAYOUT_LAYOUT_H_
