// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/pending.h"

#include <stdexcept>

#include "model/endpoint.h"
#include "store/store_state.h"

namespace ostrafel {

std::map<std::string, std::map<std::string, std::string>> PendingFields() {
  std::map<std::string, std::map<std::string, std::string>> pending;
  for (const auto& [key, fields] : Store->HashBatch) {
    for (const Field& field : fields) pending[key][field.name] = field.value;
  }
  return pending;
}

std::map<std::string, std::vector<std::string>> PendingValues() {
  std::map<std::string, std::vector<std::string>> pending;
  for (const auto& [key, values] : Store->ListBatch)
    pending[key].assign(values.begin(), values.end());
  return pending;
}

std::string PendingRemovalsText() {
  std::string text;
  for (const std::string& key : Store->RemovalBatch.keys) {
    text += model::Describe(model::Command{"UNLINK", key}) + "\n";
  }
  for (const auto& [key, values] : Store->RemovalBatch.list_values) {
    for (const char* value : values) {
      text += model::Describe(model::Command{"LREM", key, "0", value}) + "\n";
    }
  }
  for (const auto& [key, fields] : Store->RemovalBatch.hash_fields) {
    for (const char* field : fields) {
      text += model::Describe(model::Command{"HDEL", key, field}) + "\n";
    }
  }
  return text;
}

Document Parse(const std::string& json) {
  json_error_t error;
  Document document(json_loads(json.c_str(), 0, &error));
  if (!document) throw std::runtime_error(json + ": " + error.text);
  return document;
}

}  // namespace ostrafel
