// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_STORE_KEYED_BATCH_H_
#define OSTRAFEL_STORE_KEYED_BATCH_H_

#include <cstddef>
#include <cstring>
#include <map>
#include <memory_resource>
#include <string_view>

namespace ostrafel {

/// Plain byte-wise comparison of NUL-terminated texts, a text before those that go on after it.
struct ByteOrder {
  bool operator()(const char* a, const char* b) const { return std::strcmp(a, b) < 0; }
};

/// Keys, in ascending byte order, with what waits for each: a map whose texts and nodes lie in
/// memory of its own, which is given up as a whole. An allocation is then little more than the move
/// of a pointer, and nothing is freed one by one.
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
      last_ = entries_.try_emplace(last_, Keep(key));
    }
    return last_->second;
  }

  /// A NUL-terminated copy of text that lives until the batch is cleared.
  [[nodiscard]] const char* Keep(std::string_view text) {
    char* copy = static_cast<char*>(memory_.allocate(text.size() + 1, 1));
    copy[text.copy(copy, text.size())] = '\0';
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
