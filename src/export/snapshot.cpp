// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/snapshot.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "live/key_reading.h"
#include "live/key_stream.h"
#include "live/store_reading.h"

namespace ostrafel {

namespace {

// One reading of all documents.
class DocumentReading {
 public:
  DocumentReading(redisContext* context, const ExportScope& scope, const DocumentTaker& taker,
                  StoreKeys keys)
      : context_(context), scope_(scope), taker_(taker), keys_(std::move(keys)) {}

  void MakePlan(bool windows_names) {
    Folders folders(scope_.uri, windows_names);
    plan_ = PlanTree(&keys_, scope_, &folders);
  }

  [[nodiscard]] std::size_t Size() const { return plan_.keys.size(); }

  // All at one moment.
  void ReadAtOnce() {
    Begin();
    StreamKeysAtOnce(
        context_, PatternsOf(scope_), ReadsOf(plan_.keys),
        [&](std::string_view name) { CheckName(std::string(name)); },
        [&](std::size_t place, std::optional<Stored> value) {
          const KeyEntry& entry = *plan_.keys[place];
          if (!value || !HasShape(entry, *value)) {
            unsteady_.insert(entry.first);
          } else {
            Keep(entry, *std::move(value));
          }
          GoOn(place);
        });
  }

  // Each at its own moment; the restless ones before, together.
  void ReadInParts(const std::set<std::string>& restless) {
    Begin();
    Contents held;
    const bool is_held = Hold(restless, &held);
    StreamKeys(context_, ReadsOf(plan_.keys), [&](std::size_t place, std::optional<Stored> value) {
      const KeyEntry& entry = *plan_.keys[place];
      const auto kept = held.find(&entry);
      if (kept != held.end()) {
        Keep(entry, kept->second);
      } else if (!value || DigestOf(*value) != entry.second.content) {
        unsteady_.insert(entry.first);
      } else {
        Keep(entry, *std::move(value));
      }
      GoOn(place);
    });
    std::vector<std::string> names;
    for (const std::string& pattern : PatternsOf(scope_)) ScanKeys(context_, pattern, &names);
    for (const std::string& name : names) {
      // Where a restless key was held, what comes of it later counts no more.
      if (!is_held || restless.count(name) == 0) CheckName(name);
    }
  }

  [[nodiscard]] const std::set<std::string>& Unsteady() const { return unsteady_; }

  Snapshot Finish() {
    Snapshot snapshot = {std::move(keys_), {}};
    for (const KeyEntry& entry : snapshot.keys) {
      if (IsLost(entry)) snapshot.lost.push_back(&entry);
    }
    std::sort(snapshot.lost.begin(), snapshot.lost.end(), ComesBefore);
    return snapshot;
  }

 private:
  static std::vector<KeyToRead> ReadsOf(const std::vector<KeyEntry*>& entries) {
    std::vector<KeyToRead> keys;
    keys.reserve(entries.size());
    for (const KeyEntry* entry : entries) keys.push_back({&entry->first, entry->second.type});
    return keys;
  }

  // True when the value leads to the same keys as the one that was planned with.
  static bool HasShape(const KeyEntry& entry, const Stored& value) {
    return DigestOf(value) == entry.second.content ||
           LookAt(entry.first, value).facts.shape == entry.second.shape;
  }

  void Keep(const KeyEntry& entry, Stored value) {
    if (!IsEmpty(value)) contents_.emplace(&entry, std::move(value));
  }

  void Begin() {
    taker_.begin();
    unsteady_.clear();
    contents_ = Contents();
    document_ = 0;
  }

  // Reads the restless keys at one moment. False when the server has no memory for that.
  bool Hold(const std::set<std::string>& restless, Contents* held) {
    if (restless.empty()) return true;
    std::vector<KeyToRead> to_read;
    for (const std::string& key : restless) {
      const auto entry = keys_.find(key);
      // One that is not there this time must not be there at that moment either.
      to_read.push_back({&key, entry == keys_.end() ? KeyType::kNone : entry->second.type});
    }
    try {
      StreamKeysAtOnce(context_, {}, to_read, nullptr,
                       [&](std::size_t place, std::optional<Stored> value) {
                         Take(*to_read[place].key, std::move(value), held);
                       });
    } catch (const MemoryIsFull&) {
      // They may hold still this time, as nobody can write much now.
      return false;
    }
    return true;
  }

  // Takes what a restless key held at that moment.
  void Take(const std::string& key, std::optional<Stored> value, Contents* held) {
    const auto entry = keys_.find(key);
    const bool is_known = entry != keys_.end();
    if (!value || (is_known ? !HasShape(*entry, *value) : !IsEmpty(*value))) {
      unsteady_.insert(key);
    } else if (is_known) {
      held->emplace(&*entry, *std::move(value));
    }
  }

  void CheckName(const std::string& name) {
    if (!IsInScope(scope_, name)) return;
    const auto entry = keys_.find(name);
    if (entry == keys_.end() || entry->second.type == KeyType::kNone) unsteady_.insert(name);
  }

  // Gives the document away that the key at place was the last one of.
  void GoOn(std::size_t place) {
    const PlannedDocument& document = plan_.documents[document_];
    if (place + 1 < document.end) return;
    if (unsteady_.empty()) {
      const WrittenKeys written = taker_.take(document, keys_, contents_);
      for (std::size_t i = document.begin; i < document.end; ++i) {
        KeyEntry& entry = *plan_.keys[i];
        if (written.count(&entry) != 0) entry.second.is_written = true;
      }
    }
    contents_ = Contents();  // clear() would take the longer, the more there once was
    ++document_;
  }

  redisContext* context_;
  const ExportScope& scope_;
  const DocumentTaker& taker_;
  StoreKeys keys_;
  Plan plan_;
  std::set<std::string> unsteady_;
  Contents contents_;
  std::size_t document_ = 0;
};

}  // namespace

Snapshot ReadDocuments(redisContext* context, const ExportScope& scope, bool windows_names,
                       const DocumentTaker& taker) {
  std::set<std::string> restless;
  std::set<std::string> unsteady;
  bool is_full = false;
  for (int readings = 0; readings < kMostReadings; ++readings) {
    DocumentReading reading(context, scope, taker, LearnKeys(context, scope));
    reading.MakePlan(windows_names);
    bool is_read = false;
    if (!is_full && reading.Size() <= kKeysAtOnce) {
      try {
        reading.ReadAtOnce();
        is_read = true;
      } catch (const MemoryIsFull&) {
        is_full = true;
      }
    }
    if (!is_read) reading.ReadInParts(restless);
    unsteady = reading.Unsteady();
    if (unsteady.empty()) return reading.Finish();
    restless.insert(unsteady.begin(), unsteady.end());
    if (restless.size() > kKeysAtOnce) restless.clear();
  }
  throw std::runtime_error(UnsteadyMessage(unsteady.size(), *unsteady.begin()));
}

}  // namespace ostrafel
