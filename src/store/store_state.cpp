// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/store_state.h"

namespace ostrafel {

bool MergeMode = true;

std::map<std::string, bool> VisitedResourceMap;

std::map<std::string, bool> PrunedPrefixes;

KeyedBatch<std::pmr::vector<Field>> HashBatch;
std::uint32_t HashBatchCount = 0;

KeyedBatch<KeptTexts> ListBatch;
std::uint32_t ListBatchCount = 0;

PendingRemovals RemovalBatch;
std::uint32_t RemovalBatchCount = 0;

void QueueText(const char* key, std::string_view text, KeyedBatch<KeptTexts>* batch) {
  const char* kept = batch->Keep(text);
  (*batch)[key].push_back(kept);
}

void PendingRemovals::clear() {
  keys.clear();
  list_values.clear();
  hash_fields.clear();
}

void ResetStoreState() {
  MergeMode = true;
  VisitedResourceMap.clear();
  PrunedPrefixes.clear();
  HashBatch.clear();
  HashBatchCount = 0;
  ListBatch.clear();
  ListBatchCount = 0;
  RemovalBatch.clear();
  RemovalBatchCount = 0;
}

}  // namespace ostrafel
