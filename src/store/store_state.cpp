#include "store/store_state.h"

bool MergeMode = true;

std::map<std::string, bool> VisitedResourceMap;

std::map<std::string, bool> PrunedPrefixes;

std::map<std::string, std::map<std::string, std::string>> HashBatch;
std::uint32_t HashBatchCount = 0;

std::map<std::string, std::vector<std::string>> ListBatch;
std::uint32_t ListBatchCount = 0;

PendingRemovals RemovalBatch;
std::uint32_t RemovalBatchCount = 0;

void ResetStoreState() {
  MergeMode = true;
  VisitedResourceMap.clear();
  PrunedPrefixes.clear();
  HashBatch.clear();
  HashBatchCount = 0;
  ListBatch.clear();
  ListBatchCount = 0;
  RemovalBatch = {};
  RemovalBatchCount = 0;
}
