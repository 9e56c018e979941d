// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_EXPORT_LOSS_H_
#define OSTRAFEL_EXPORT_LOSS_H_

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

namespace ostrafel {

/// Longer names of keys and fields are shortened where they are told.
inline constexpr std::size_t kLongestShown = 2000;

/// The name, without its middle if it is too long.
[[nodiscard]] std::string ShownName(std::string_view name);

/// Something that a create of the exported tree does not bring back as it was.
struct Loss {
  std::string_view key;
  std::string_view record;  ///< The field, or "element N"; empty for the whole key.
  std::string_view reason;
};

/// A loss of a key that is known.
struct LostRecord {
  std::string shown;  ///< The ShownName of the record: there may be one for each field of a key.
  std::string reason;
  std::size_t digest;  ///< Of a record that is shortened, to tell it from those that look alike.

  bool operator<(const LostRecord& other) const {
    return std::tie(shown, reason, digest) < std::tie(other.shown, other.reason, other.digest);
  }
};

/// Sorted, each once: what stands in two documents is lost once. Each key is kept once.
class Losses {
 public:
  using Records = std::set<LostRecord>;

  // NOLINTBEGIN(readability-identifier-naming): named as those of standard containers
  void insert(const Loss& loss);

  /// Takes what the others have.
  void merge(Losses& others);

  [[nodiscard]] bool empty() const { return by_key_.empty(); }
  [[nodiscard]] std::size_t size() const;
  // NOLINTEND(readability-identifier-naming)

  /// True when something is lost of the whole key.
  [[nodiscard]] bool HasWhole(std::string_view key) const;

  [[nodiscard]] const std::map<std::string, Records, std::less<>>& ByKey() const { return by_key_; }

 private:
  std::map<std::string, Records, std::less<>> by_key_;
};

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_LOSS_H_
