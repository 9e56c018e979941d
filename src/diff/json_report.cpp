// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <tuple>
#include <vector>

#include "diff/comparison.h"
#include "diff/report.h"
#include "text/json_text.h"

namespace ostrafel {

namespace {

const char* NameOf(Change change) {
  switch (change) {
    case Change::kMissing:
      return "missing";
    case Change::kExtra:
      return "extra";
    case Change::kChanged:
      break;
  }
  return "changed";
}

// The index in the list that has the element; of a changed one the wanted one's.
std::size_t IndexOf(const Difference& difference) {
  const Element* element = std::get_if<Element>(&difference.record);
  if (element == nullptr) return 0;
  return difference.change == Change::kExtra ? element->stored_index : element->wanted_index;
}

void WriteRecord(const Difference& difference, JsonWriter* json) {
  json->Name("record");
  if (const std::string* field = std::get_if<std::string>(&difference.record)) {
    json->String(*field);
  } else if (std::holds_alternative<Element>(difference.record)) {
    json->Number(IndexOf(difference));
  } else {
    json->Null();
  }
}

void WritePlace(const DiffOptions& options, const std::optional<TreePlace>& place,
                JsonWriter* json) {
  std::optional<std::string> file;
  std::optional<std::string> pointer;
  if (place) {
    file = RelativePath(options, place->path);
    pointer = place->pointer;
  }
  json->OptionalMember("file", file);
  json->PositionMember("line", place ? place->position.line : 0);
  json->OptionalMember("pointer", pointer);
}

void WriteDifference(const DiffOptions& options, const Difference& difference, JsonWriter* json) {
  json->OpenObject();
  json->Member("change", NameOf(difference.change));
  json->Member("key", difference.key);
  json->Name("type");
  if (difference.type == KeyType::kOther) {
    json->Null();
  } else {
    json->String(NameOf(difference.type));
  }
  WriteRecord(difference, json);
  json->OptionalMember("stored", difference.stored);
  json->OptionalMember("wanted", difference.wanted);
  WritePlace(options, difference.place, json);
  json->Close();
}

void WriteApplied(const Applied& applied, JsonWriter* json) {
  json->Name("applied");
  json->OpenObject();
  json->NumberMember("keys", applied.keys);
  json->NumberMember("records", applied.records);
  json->NumberMember("transactions", applied.transactions);
  json->Close();
}

}  // namespace

std::string DiffJson(const DiffOptions& options, const DiffReport& report) {
  std::vector<const Difference*> sorted;
  sorted.reserve(report.differences.size());
  for (const Difference& difference : report.differences) sorted.push_back(&difference);
  // By key and field they are already; elements are in the order of the lists side by side.
  std::stable_sort(sorted.begin(), sorted.end(), [](const Difference* a, const Difference* b) {
    return std::forward_as_tuple(a->key, IndexOf(*a)) < std::forward_as_tuple(b->key, IndexOf(*b));
  });
  JsonWriter json;
  json.OpenObject();
  json.NumberMember("version", 1);
  json.Name("equal");
  json.Bool(report.differences.empty());
  json.Name("differences");
  json.OpenArray();
  for (const Difference* difference : sorted) WriteDifference(options, *difference, &json);
  json.Close();
  if (report.applied) WriteApplied(*report.applied, &json);
  json.Close();
  return json.Finish();
}

}  // namespace ostrafel
