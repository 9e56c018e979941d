// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/memory_export.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "export/folders.h"
#include "memory/search.h"

namespace ostrafel {

namespace {

// What a key holds for who takes it to be of this type.
std::optional<Stored> ReadAs(const Server& server, const KeyToRead& key) {
  const auto found = server.keys.find(*key.key);
  if (found == server.keys.end()) {
    return key.type == KeyType::kList ? Stored(List()) : Stored(Hash());
  }
  if (KeyTypeOf(found->second) != key.type) return std::nullopt;
  return found->second;
}

}  // namespace

StoreKeys LearnKeysOf(const Server& server, const ExportScope& scope) {
  const KeySource source = {[&](const std::string& pattern, std::vector<std::string>* names) {
                              for (std::string& name : MatchingNames(server.keys, pattern)) {
                                names->push_back(std::move(name));
                              }
                            },
                            [&](const std::vector<KeyToRead>& keys, const TakeKey& take) {
                              for (std::size_t i = 0; i < keys.size(); ++i)
                                take(i, ReadAs(server, keys[i]));
                            }};
  return LearnKeys(source, scope);
}

PlannedExport::PlannedExport(const Server& stored, ExportScope wanted, bool windows_names)
    : server(stored), scope(std::move(wanted)), keys(LearnKeysOf(server, scope)) {
  Folders folders(scope.uri, windows_names);
  plan = PlanTree(&keys, scope, &folders);
}

Contents PlannedExport::ContentsOf(std::size_t document) const {
  Contents contents;
  const PlannedDocument& planned = plan.documents[document];
  for (std::size_t i = planned.begin; i < planned.end; ++i) {
    const KeyEntry& entry = *plan.keys[i];
    const auto stored = server.keys.find(entry.first);
    if (stored != server.keys.end()) contents.emplace(&entry, stored->second);
  }
  return contents;
}

DocumentText PlannedExport::Write(std::size_t document, RootForm form) const {
  return WriteDocument(*plan.documents[document].root, form, keys, ContentsOf(document));
}

std::vector<std::string> PlannedExport::Unplaced() const {
  std::vector<std::string> names;
  for (const KeyEntry& entry : keys) {
    if (entry.second.document == 0 && IsLost(entry)) names.push_back(entry.first);
  }
  std::sort(names.begin(), names.end());
  return names;
}

MemoryExport ExportOf(const Server& server, const std::string& uri, bool windows_names) {
  PlannedExport planned(server, {uri, true}, windows_names);
  MemoryExport made;
  for (std::size_t i = 0; i < planned.plan.documents.size(); ++i) {
    const auto& [root, folder, begin, end] = planned.plan.documents[i];
    if (root->second.includes_file) made.losses.insert({root->first, "&&File", "includes"});
    const RootForm form =
        root->second.includes_file ? RootForm::kWithoutInclusion : RootForm::kAsStored;
    DocumentText document = planned.Write(i, form);
    made.losses.merge(document.losses);
    if (!folder.has_key && !document.tells_key) continue;
    if (folder.is_spare) made.losses.insert({root->first, "", "spare"});
    made.documents[folder.path] = std::move(document.text);
    for (const KeyEntry* entry : document.keys) {
      planned.keys.find(entry->first)->second.is_written = true;
    }
  }
  for (const KeyEntry& entry : planned.keys) {
    if (IsLost(entry)) made.losses.insert({entry.first, "", "unplaced"});
  }
  return made;
}

std::vector<std::string> TextsOf(const Losses& losses) {
  std::vector<std::string> texts;
  for (const auto& [key, records] : losses.ByKey()) {
    for (const LostRecord& record : records) {
      texts.push_back(ShownName(key) + " | " + record.shown + " | " + record.reason);
    }
  }
  return texts;
}

}  // namespace ostrafel
