// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/shown_differences.h"

#include <jansson.h>

#include <map>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "document/document.h"

namespace {

using Text = std::optional<std::string>;

struct Shown {
  std::string change;
  std::string type;
  Text field;
  std::optional<std::size_t> index;
  Text stored;
  Text wanted;
};

using ShownByKey = std::map<std::string, std::vector<Shown>>;

ostrafel::Document Parse(const std::string& json) {
  ostrafel::Document document(json_loadb(json.data(), json.size(), JSON_ALLOW_NUL, nullptr));
  if (!document) throw std::runtime_error("no JSON: " + json);
  return document;
}

Text TextOf(const json_t* value) {
  if (!json_is_string(value)) return std::nullopt;
  return std::string(json_string_value(value), json_string_length(value));
}

std::string StringIn(const json_t* object, const char* name) {
  return TextOf(json_object_get(object, name)).value_or("");
}

ShownByKey DifferencesIn(const std::string& json) {
  const ostrafel::Document document = Parse(json);
  ShownByKey differences;
  std::size_t i = 0;
  const json_t* entry = nullptr;
  json_array_foreach(json_object_get(document.get(), "differences"), i, entry) {
    const json_t* record = json_object_get(entry, "record");
    Shown shown = {StringIn(entry, "change"),
                   StringIn(entry, "type"),
                   TextOf(record),
                   std::nullopt,
                   TextOf(json_object_get(entry, "stored")),
                   TextOf(json_object_get(entry, "wanted"))};
    if (json_is_integer(record)) {
      shown.index = static_cast<std::size_t>(json_integer_value(record));
    }
    differences[StringIn(entry, "key")].push_back(std::move(shown));
  }
  return differences;
}

const char* TypeOf(const model::StoredValue& value) {
  if (std::holds_alternative<model::Hash>(value.value)) return "hash";
  return std::holds_alternative<model::List>(value.value) ? "list" : "";  // null: of neither kind
}

std::string Describe(const Text& text) { return text ? "'" + *text + "'" : "null"; }

std::string Describe(const Shown& shown) {
  return shown.change + " " + shown.type + " record " +
         (shown.index ? std::to_string(*shown.index) : Describe(shown.field)) + ": " +
         Describe(shown.stored) + " -> " + Describe(shown.wanted) + "\n";
}

std::string Describe(const std::vector<Shown>& all) {
  std::string text;
  for (const Shown& shown : all) text += Describe(shown);
  return text;
}

// A key of which one store has nothing, or another type, is one difference.
std::optional<Shown> WholeKey(const model::StoredValue* stored, const model::StoredValue* wanted) {
  if (stored == nullptr) return Shown{"missing", TypeOf(*wanted), {}, {}, {}, {}};
  if (wanted == nullptr) return Shown{"extra", TypeOf(*stored), {}, {}, {}, {}};
  if (stored->value.index() == wanted->value.index()) return std::nullopt;
  const auto name = [](const model::StoredValue& value) {
    const std::string type = TypeOf(value);
    return type.empty() ? "other" : type;
  };
  return Shown{"changed", TypeOf(*wanted), {}, {}, name(*stored), name(*wanted)};
}

std::vector<Shown> FieldsThatDiffer(const model::Hash& stored, const model::Hash& wanted) {
  std::map<std::string, std::pair<Text, Text>> fields;
  for (const auto& [field, value] : stored) fields[field].first = value;
  for (const auto& [field, value] : wanted) fields[field].second = value;
  std::vector<Shown> all;
  for (const auto& [field, values] : fields) {
    const auto& [before, after] = values;
    if (before == after) continue;
    all.push_back({!before  ? "missing"
                   : !after ? "extra"
                            : "changed",
                   "hash",
                   field,
                   {},
                   before,
                   after});
  }
  return all;
}

// The difference at that index of the wanted list.
const Shown* At(const std::vector<Shown>& all, std::size_t index) {
  for (const Shown& shown : all) {
    if (shown.change != "extra" && shown.index == index) return &shown;
  }
  return nullptr;
}

// What the differences make of the list; nothing when they do not fit.
std::optional<model::List> Patched(const model::List& stored, const std::vector<Shown>& all) {
  std::vector<bool> is_extra(stored.size(), false);
  for (const Shown& shown : all) {
    if (!shown.index || shown.type != "list") return std::nullopt;
    if (shown.change != "extra") continue;
    if (*shown.index >= stored.size() || shown.stored != stored[*shown.index] || shown.wanted) {
      return std::nullopt;
    }
    is_extra[*shown.index] = true;
  }
  model::List list;
  const auto add_missing = [&] {
    for (const Shown* at = At(all, list.size()); at != nullptr && at->change == "missing";
         at = At(all, list.size())) {
      list.push_back(at->wanted.value_or(""));
    }
  };
  for (std::size_t i = 0; i < stored.size(); ++i) {
    if (is_extra[i]) continue;
    add_missing();
    const Shown* at = At(all, list.size());
    if (at != nullptr && at->stored != stored[i]) return std::nullopt;
    list.push_back(at == nullptr ? stored[i] : at->wanted.value_or(""));
  }
  add_missing();
  return list;
}

std::string KeyDifference(const model::StoredValue* stored, const model::StoredValue* wanted,
                          const std::vector<Shown>& shown) {
  std::vector<Shown> expected;
  if (const std::optional<Shown> whole = WholeKey(stored, wanted)) {
    expected.push_back(*whole);
  } else if (const auto* hash = std::get_if<model::Hash>(&stored->value)) {
    expected = FieldsThatDiffer(*hash, std::get<model::Hash>(wanted->value));
  } else if (const auto* list = std::get_if<model::List>(&stored->value)) {
    const auto& wanted_list = std::get<model::List>(wanted->value);
    if (*list == wanted_list ? shown.empty() : Patched(*list, shown) == wanted_list) return "";
    return "the list does not become what is wanted by\n" + Describe(shown);
  }
  const std::string text = Describe(shown);
  return text == Describe(expected) ? "" : "shown:\n" + text + "not:\n" + Describe(expected);
}

}  // namespace

std::string DifferenceToShown(const std::string& json, const model::Store& stored,
                              const model::Store& wanted) {
  ShownByKey shown = DifferencesIn(json);
  model::Store keys = stored;
  keys.insert(wanted.begin(), wanted.end());
  const auto find = [](const model::Store& store, const std::string& key) {
    const auto found = store.find(key);
    return found == store.end() ? nullptr : &found->second;
  };
  std::string text;
  for (const auto& [key, value] : keys) {
    const std::string difference = KeyDifference(find(stored, key), find(wanted, key), shown[key]);
    if (!difference.empty()) text += key + "\n" + difference;
    shown.erase(key);
  }
  for (const auto& [key, all] : shown) text += key + ", which neither has\n" + Describe(all);
  return text;
}

std::size_t CountShown(const std::string& json) {
  return json_array_size(json_object_get(Parse(json).get(), "differences"));
}
