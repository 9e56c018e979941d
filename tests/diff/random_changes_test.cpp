// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Random changes to what random trees leave: each must be found, with its place, and nothing else.
#include <gtest/gtest.h>
#include <jansson.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "diff/comparison.h"
#include "diff/places.h"
#include "document/json_file.h"
#include "layout/layout.h"
#include "layout/value_rendering.h"
#include "model/random_tree.h"
#include "play/play.h"
#include "support/temp_directory.h"
#include "support/test_factor.h"
#include "text/json_pointer.h"
#include "text/text_file.h"

namespace ostrafel {

namespace {

const std::string kUri = "/redfish";

std::size_t Below(std::mt19937_64& generator, std::size_t count) {
  return static_cast<std::size_t>(generator() % count);
}

// One line for what a change must be told as.
std::string Told(const std::string& change, const std::string& key, const std::string& record) {
  return change + " " + key + (record.empty() ? "" : " | " + record);
}

std::string Told(const Difference& difference) {
  const std::string change = difference.change == Change::kMissing ? "missing"
                             : difference.change == Change::kExtra ? "extra"
                                                                   : "changed";
  const auto value = [](const std::optional<std::string>& text) { return text.value_or("none"); };
  const std::string values = value(difference.stored) + " > " + value(difference.wanted);
  if (const std::string* field = std::get_if<std::string>(&difference.record)) {
    return Told(change, difference.key, *field + " | " + values);
  }
  if (const Element* element = std::get_if<Element>(&difference.record)) {
    const std::size_t index =
        difference.change == Change::kExtra ? element->stored_index : element->wanted_index;
    return Told(change, difference.key, std::to_string(index) + " | " + values);
  }
  return Told(change, difference.key, "");
}

// Changes keys of a store, each at most once, and notes what must be told.
class Changer {
 public:
  Changer(std::mt19937_64& generator, Server* stored) : generator_(generator), stored_(*stored) {}

  void Change(const std::string& key) {
    Stored& value = stored_.keys.at(key);
    const std::size_t kind = Below(generator_, 8);
    if (kind == 0) {
      stored_.keys.erase(key);
      told.push_back(Told("missing", key, ""));
    } else if (kind == 1) {
      value = std::holds_alternative<Hash>(value) ? Stored(List{"x"}) : Stored(Hash{{"x", "y"}});
      told.push_back(Told("changed", key, ""));
    } else if (Hash* hash = std::get_if<Hash>(&value)) {
      ChangeHash(key, hash);
    } else {
      ChangeList(key, &std::get<List>(value));
    }
  }

  void AddKey() {
    const std::string key = kUri + "/new/" + std::to_string(Below(generator_, 1000));
    if (!stored_.keys.emplace(key, Hash{{"x", "y"}}).second) return;
    told.push_back(Told("extra", key, ""));
  }

  std::vector<std::string> told;

 private:
  void ChangeHash(const std::string& key, Hash* hash) {
    const std::size_t kind = Below(generator_, 3);
    if (kind == 0) {
      (*hash)["new field"] = "new";
      told.push_back(Told("extra", key, "new field | new > none"));
      return;
    }
    const auto at =
        std::next(hash->begin(), static_cast<std::ptrdiff_t>(Below(generator_, hash->size())));
    if (kind == 1 && hash->size() > 1) {
      told.push_back(Told("missing", key, at->first + " | none > " + at->second));
      hash->erase(at);
    } else {
      told.push_back(Told("changed", key, at->first + " | changed > " + at->second));
      at->second = "changed";
    }
  }

  void ChangeList(const std::string& key, List* list) {
    const std::size_t kind = Below(generator_, 3);
    std::size_t index = Below(generator_, list->size());
    if (kind == 0) {
      list->insert(list->begin() + static_cast<std::ptrdiff_t>(index), "new");
      told.push_back(Told("extra", key, std::to_string(index) + " | new > none"));
    } else if (kind == 1 && list->size() > 1) {
      // Which of equal ones side by side is gone cannot be seen: the last one is told.
      while (index + 1 < list->size() && (*list)[index] == (*list)[index + 1]) ++index;
      told.push_back(Told("missing", key, std::to_string(index) + " | none > " + (*list)[index]));
      list->erase(list->begin() + static_cast<std::ptrdiff_t>(index));
    } else {
      told.push_back(
          Told("changed", key, std::to_string(index) + " | changed > " + (*list)[index]));
      (*list)[index] = "changed";
    }
  }

  std::mt19937_64& generator_;
  Server& stored_;
};

// The record that a value of a document is to have, by the rules of layout.h.
std::string RecordOfScalar(const std::string& name, const json_t* value, bool is_field) {
  if (!is_field || !IsReservedProperty(name) || !json_is_string(value)) return RenderValue(value);
  std::string text = json_string_value(value);
  EscapeText(text);
  return text;
}

// True when the record is one of a value, an object or array, of this name; without a name in
// lists.
bool IsReferenceTo(const json_t* value, const std::string& name, const std::string& record) {
  const auto starts_with = [&](const std::string& marker) {
    const std::string start = marker + (name.empty() ? "" : name + " ");
    return record.compare(0, start.size(), start) == 0;
  };
  if (json_is_array(value)) return starts_with(ArrayMarker);
  return json_is_object(value) && (starts_with(ObjectMarker) || starts_with(ObjectRefMarker));
}

// True when the document has the wanted record at the pointer.
bool Holds(const json_t* root, const Difference& difference) {
  const std::string& pointer = difference.place->pointer;
  const json_t* value = ValueAt(root, pointer);
  if (value == nullptr) return false;
  const bool is_part = json_is_object(value) || json_is_array(value);
  if (std::holds_alternative<WholeKey>(difference.record)) return is_part;
  const std::string step = pointer.substr(pointer.rfind('/') + 1);
  const std::string name = NameOfStep(step).value_or("");
  if (const std::string* field = std::get_if<std::string>(&difference.record)) {
    if (is_part) return IsReferenceTo(value, name, *field);
    return *field == name && RecordOfScalar(name, value, true) == difference.wanted;
  }
  return is_part ? IsReferenceTo(value, "", *difference.wanted)
                 : RecordOfScalar(name, value, false) == difference.wanted;
}

// What follows a position; columns are characters.
std::string TextFrom(const std::string& text, const Position& position) {
  std::size_t at = 0;
  for (std::size_t line = 1; line < position.line; ++line) at = text.find('\n', at) + 1;
  for (std::size_t column = 1; column < position.column; ++column) {
    do {
      ++at;
    } while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U);
  }
  return text.substr(at);
}

// True when the name of the member, or the element itself, stands at the position.
bool StandsThere(const json_t* root, const TreePlace& place) {
  if (place.position.line == 0) return false;
  const std::string rest = TextFrom(ReadTextFile(place.path), place.position);
  const Document token(json_loads(rest.c_str(), JSON_DECODE_ANY | JSON_DISABLE_EOF_CHECK, nullptr));
  const std::size_t slash = place.pointer.rfind('/');
  if (slash == std::string::npos) return json_is_object(token.get());
  const json_t* parent = ValueAt(root, place.pointer.substr(0, slash));
  if (!json_is_object(parent)) return json_equal(token.get(), ValueAt(root, place.pointer)) != 0;
  return json_is_string(token.get()) &&
         NameOfStep(place.pointer.substr(slash + 1)) == json_string_value(token.get());
}

void ExpectPlace(const Difference& difference) {
  const bool is_of_tree = difference.change != Change::kExtra;
  EXPECT_TRUE(difference.place || !is_of_tree) << "no place of " << Told(difference);
  if (!difference.place || !is_of_tree) return;
  const JsonFile file = LoadJsonFile(difference.place->path.c_str());
  const std::string where = Told(difference) + " at " + difference.place->pointer + " of " +
                            ReadTextFile(difference.place->path);
  EXPECT_TRUE(Holds(file.root.get(), difference)) << where;
  EXPECT_TRUE(StandsThere(file.root.get(), *difference.place)) << where;
}

// A random tree with included files.
void WriteTree(std::mt19937_64& generator, const TempDirectory& directory) {
  model::RandomTreeOptions options;
  options.uri = kUri;
  for (const std::string name : {"a.json", "b.json"}) {
    directory.Write("www/" + name, model::RandomDocument(generator, options, kUri));
    options.include_files.push_back(name);
  }
  (void)directory.MakeFolder("tree");
  model::WriteRandomTree(generator, directory.path("tree"), options);
}

// A store in which every key of another is missing, or every record of it is changed.
Server WithAllChanged(std::mt19937_64& generator, const Server& wanted) {
  Server stored;
  for (const auto& [key, value] : wanted.keys) {
    if (Below(generator, 4) == 0) continue;
    if (const Hash* hash = std::get_if<Hash>(&value)) {
      Hash changed = {{"new field", "new"}};
      for (const auto& [field, text] : *hash) {
        if (!text.empty()) changed[field] = "changed";
      }
      stored.keys[key] = changed;
    } else {
      stored.keys[key] = List(std::get<List>(value).size(), "changed");
    }
  }
  return stored;
}

// Compares a random tree with what it leaves when that has been changed. False when the tree does
// not load.
bool TryTree(unsigned long seed) {
  const TempDirectory directory;
  std::mt19937_64 generator(seed);
  WriteTree(generator, directory);
  Documents.include_root = directory.path("www/");
  const LoadRequest request = {LoadAction::kCreate, directory.path("tree"), kUri, "index.json"};
  const Listing listing = ListTree(request);
  Server wanted;
  if (PlayLoad(&wanted, request, listing, OnFailure::kStop).status != 0) return false;
  EXPECT_TRUE(CompareStores(wanted, wanted).empty());

  Server stored = wanted;
  std::vector<std::string> keys;
  for (const auto& [key, value] : wanted.keys) keys.push_back(key);
  Changer changer(generator, &stored);
  for (std::size_t i = Below(generator, 10); i < 10 && !keys.empty(); ++i) {
    const auto at = keys.begin() + static_cast<std::ptrdiff_t>(Below(generator, keys.size()));
    changer.Change(*at);
    keys.erase(at);
  }
  if (Below(generator, 2) == 0) changer.AddKey();

  Differences differences = CompareStores(stored, wanted);
  std::vector<std::string> told;
  for (const Difference& difference : differences) told.push_back(Told(difference));
  std::sort(told.begin(), told.end());
  std::sort(changer.told.begin(), changer.told.end());
  EXPECT_EQ(told, changer.told);
  FindPlaces(listing, &differences);
  for (const Difference& difference : differences) ExpectPlace(difference);

  differences = CompareStores(WithAllChanged(generator, wanted), wanted);
  EXPECT_GE(differences.size(), wanted.keys.size());
  FindPlaces(listing, &differences);
  for (const Difference& difference : differences) ExpectPlace(difference);
  Documents = {};
  return true;
}

TEST(RandomChanges, AreAllToldWithTheirPlaces) {
  unsigned long tried = 0;
  const unsigned long count = 150 * TestFactor();
  for (unsigned long seed = 0; seed < count; ++seed) {
    if (TryTree(seed)) ++tried;
    ASSERT_FALSE(::testing::Test::HasFailure()) << "seed " << seed;
  }
  EXPECT_GT(tried, count / 2) << "most trees must load";
}

}  // namespace

}  // namespace ostrafel
