// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Reading records: the way back from what layout.h makes.
#ifndef OSTRAFEL_LAYOUT_RECORD_PARTS_H_
#define OSTRAFEL_LAYOUT_RECORD_PARTS_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ostrafel {

/// What a reference record says.
struct RecordParts {
  std::string_view marker;  ///< ObjectMarker, ObjectRefMarker or ArrayMarker.
  std::string name;         ///< The member's; in a list, the element's index.
  std::string target;
  bool is_in_place = false;  ///< The target is the derived key of the name.
};

/// The ways to read a reference record: its name and its target may hold blanks, and only a blank
/// is between them.
struct RecordReadings {
  std::vector<RecordParts> parts;  ///< The likeliest first.
  /// So many, the first ones, are as likely as each other.
  std::size_t likely = 0;
};

/// Reads the records of one hash or list. Of however many, it makes the keys of its parts for those
/// only that may point there.
class RecordReader {
 public:
  /// key is borrowed.
  explicit RecordReader(const std::string& key);

  /// The readings of a field of the hash. One whose target is the derived key of its name is the
  /// likeliest, and leaves no other but of an object, which may have any key of its own. Without
  /// such a one those are likely whose target begins like a key, with "/" or "&&", or, if there is
  /// none, all. None at all where field begins with no marker or has no blank behind it. Of a field
  /// with very many blanks, or of very many bytes, only the first readings are given.
  [[nodiscard]] RecordReadings ReadingsOf(std::string_view field) const;

  /// What an element of the list says, if it is a reference record (IsReferenceRecord). A marker
  /// with nothing after it is one, too, but that of arrays: the "@odata.id" of an object may be
  /// empty.
  [[nodiscard]] std::optional<RecordParts> PartsOf(std::size_t index,
                                                   std::string_view element) const;

  /// As MemberOfField.
  [[nodiscard]] std::string MemberOf(std::string_view field) const;

 private:
  [[nodiscard]] bool IsInPlace(std::string_view name, std::string_view target) const;
  [[nodiscard]] std::size_t FindDerivedTarget(std::string_view rest) const;

  const std::string& key_;
  std::size_t shortest_;  // the size of the derived key of an empty name
};

/// The name of the member that a field of the hash at key is recorded for: the field itself, or the
/// name in the first reading of a reference record. Where no target begins like a key, that is the
/// one whose target has no blank.
[[nodiscard]] std::string MemberOfField(const std::string& key, std::string_view field);

/// True when key begins like a derived key.
[[nodiscard]] bool IsDerivedKey(std::string_view key);

}  // namespace ostrafel

#endif  // OSTRAFEL_LAYOUT_RECORD_PARTS_H_
