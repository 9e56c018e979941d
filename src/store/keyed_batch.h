// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_STORE_KEYED_BATCH_H_
#define OSTRAFEL_STORE_KEYED_BATCH_H_

#include <array>
#include <cstddef>
#include <cstring>
#include <map>
#include <memory_resource>
#include <string_view>

namespace ostrafel {

/// Byte-wise comparison of NUL-terminated strings; a prefix comes before what it begins.
struct ByteOrder {
  bool operator()(const char* a, const char* b) const { return std::strcmp(a, b) < 0; }
};

/// A sorted map with its own arena: an allocation bumps a pointer, clear() frees everything. Holds
/// keys, in ascending byte order, with what waits for each.
template <typename Value>
class KeyedBatch {
 public:
  KeyedBatch() = default;
  KeyedBatch(const KeyedBatch&) = delete;
  KeyedBatch& operator=(const KeyedBatch&) = delete;
  ~KeyedBatch() = default;

  /// What waits for key, for the caller to change: empty when the key is new. key is copied.
  [[nodiscard]] Value& operator[](const char* key) {
    // The members of an object are queued one after the other, all for the same key.
    if (last_ != entries_.end() && std::strcmp(last_->first, key) == 0) return last_->second;
    last_ = entries_.lower_bound(key);
    if (last_ == entries_.end() || std::strcmp(last_->first, key) != 0) {
      last_ = entries_.try_emplace(last_, Keep(std::array<std::string_view, 1>{key}));
    }
    return last_->second;
  }

  /// The pieces, joined into a NUL-terminated copy that lives until the batch is cleared.
  template <typename Strings>
  [[nodiscard]] const char* Keep(const Strings& pieces) {
    std::size_t size = 1;
    for (const std::string_view piece : pieces) size += piece.size();
    char* const copy = static_cast<char*>(memory_.allocate(size, 1));
    char* end = copy;
    for (const std::string_view piece : pieces) end += piece.copy(end, piece.size());
    *end = '\0';
    return copy;
  }

  // NOLINTBEGIN(readability-identifier-naming): named as those of standard containers

  void clear() {
    entries_.clear();
    last_ = entries_.end();
    memory_.release();
  }

  [[nodiscard]] bool empty() const { return entries_.empty(); }
  [[nodiscard]] std::size_t size() const { return entries_.size(); }
  [[nodiscard]] auto begin() const { return entries_.begin(); }
  [[nodiscard]] auto end() const { return entries_.end(); }

  // NOLINTEND(readability-identifier-naming)

 private:
  // Holds most full batches in a few blocks, which the heap has ready again after a flush.
  static constexpr std::size_t kBlockSize = std::size_t{64} * 1024;

  using Entries = std::pmr::map<const char*, Value, ByteOrder>;

  std::pmr::monotonic_buffer_resource memory_{kBlockSize};
  Entries entries_{&memory_};
  typename Entries::iterator last_ = entries_.end();  // the entry that was asked for last
};

}  // namespace ostrafel

#endif  // OSTRAFEL_STORE_KEYED_BATCH_H_
