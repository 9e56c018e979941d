// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_EXPORT_LOSS_H_
#define OSTRAFEL_EXPORT_LOSS_H_

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

namespace ostrafel {

/// Longer names of keys and fields are shortened where they are told.
inline constexpr std::size_t kLongestShown = 2000;

/// Something that a create of the exported tree does not bring back as it was.
struct Loss {
  /// Keeps names that are too long without their middle: there may be a loss for each record of a
  /// key of megabytes.
  Loss(std::string_view key_name, std::string_view record_name, std::string why);

  std::string key;
  std::string record;  ///< The field, or "element N"; empty for the whole key.
  std::string reason;

  bool operator<(const Loss& other) const {
    return std::tie(key, record, reason) < std::tie(other.key, other.record, other.reason);
  }
};

/// Sorted, each once: what stands in two documents is lost once.
using Losses = std::set<Loss>;

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_LOSS_H_
