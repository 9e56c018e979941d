// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What a create made is exported and created again, from random trees and in random orders of the
// files. Nothing may change that was not listed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "export/memory_export.h"
#include "export/nasty_tree.h"
#include "export/reached_keys.h"
#include "layout/layout.h"
#include "memory/server_copy.h"
#include "model/random_tree.h"
#include "play/play.h"
#include "support/temp_directory.h"
#include "support/test_factor.h"

namespace ostrafel {

namespace {

constexpr const char* kFileName = "index.json";

void Shuffle(std::mt19937_64& generator, LoadList* list) {
  // From an order of its own: that of a file system is another one everywhere.
  std::vector<std::pair<std::string, std::string>> files;
  for (std::size_t i = 0; i < list->paths.size(); ++i) {
    files.emplace_back(list->paths[i], list->keys[i]);
  }
  std::sort(files.begin(), files.end());
  for (std::size_t i = files.size(); i > 1; --i)
    std::swap(files[i - 1], files[static_cast<std::size_t>(generator() % i)]);
  for (std::size_t i = 0; i < files.size(); ++i) {
    std::tie(list->paths[i], list->keys[i]) = files[i];
  }
}

// Creates the tree of the folder in an empty store, its files in a random order.
Played Create(const std::string& path, const std::string& uri, std::mt19937_64& generator,
              Server* server) {
  const LoadRequest request = {LoadAction::kCreate, path, uri, kFileName};
  Listing listing = ListTree(request);
  Shuffle(generator, &listing.list);
  return PlayLoad(server, request, listing, OnFailure::kStop);
}

void WriteDocuments(const MemoryExport& made, const TempDirectory& directory) {
  for (const auto& [folder, text] : made.documents) {
    directory.Write((folder.empty() ? "" : folder + "/") + kFileName, text);
  }
}

// What may have changed: keys with a loss, with all that their records lead to.
std::set<std::string> KeysOfLosses(const Server& before, const Losses& losses) {
  std::vector<std::string> keys;
  for (const auto& [key, records] : losses.ByKey()) keys.push_back(key);
  return ReachedFrom(before, std::move(keys));
}

// True for a key that a loss at one of these keys may have moved something to.
bool IsBelowOne(const std::set<std::string>& lost, const std::string& key) {
  return std::any_of(lost.begin(), lost.end(), [&](const std::string& start) {
    const std::string place = DerivedKey(start, "");
    return key.compare(0, place.size(), place) == 0;
  });
}

class RoundTrips : public testing::Test {
 protected:
  // What differs in the store that comes of an export, which is "" when nothing does that may not.
  // All of the tree that is in the scope is wanted, and all that it leads to; of the rest what has
  // come along has to be as it was.
  static std::string Differ(const Server& before, const Server& after, const ExportScope& scope,
                            const Losses& listed) {
    const std::set<std::string> lost = KeysOfLosses(before, listed);
    Server wanted = WhatIsExported(before, scope, after);
    for (const std::string& key : lost) wanted.keys.erase(key);
    Server found;
    for (const auto& [key, value] : after.keys) {
      if (lost.count(key) != 0 || (wanted.keys.count(key) == 0 && IsBelowOne(lost, key))) continue;
      found.keys.emplace(key, value);
    }
    return Difference(Dump(wanted), Dump(found));
  }

  // Creates the tree, and again what is exported of that, several times.
  void ExpectBack(const model::Tree& tree, const std::string& uri, std::mt19937_64& generator) {
    const TempDirectory from;
    model::WriteTree(tree, from.path(), kFileName);
    Server before;
    if (Create(from.path(), uri, generator, &before).status != 0) return;
    ++trees;
    const MemoryExport made = ExportOf(before, uri);
    if (!made.losses.empty()) ++trees_with_losses;
    for (const auto& [key, records] : made.losses.ByKey()) {
      for (const LostRecord& record : records) ++losses[record.reason];
    }
    const ExportScope scope = {uri, true};
    const TempDirectory to;
    WriteDocuments(made, to);
    for (int order = 0; order < 4; ++order) {
      Server after;
      const Played played = Create(to.path(), uri, generator, &after);
      const std::string difference = Differ(before, after, scope, made.losses);
      if (played.status == 0 && difference.empty()) {
        if (!made.losses.empty()) continue;
        ASSERT_EQ(ExportOf(after, uri).documents, made.documents);
        continue;
      }
      std::string texts;
      for (const std::string& text : TextsOf(made.losses)) texts += text + "\n";
      for (const model::TreeFolder& folder : tree) {
        texts += "from " + folder.path + ": " + folder.document.value_or("none") + "\n";
      }
      for (const auto& [folder, text] : made.documents) texts += "to " + folder + ": " + text;
      FAIL() << uri << "\n"
             << played.status << played.messages << difference << "\n"
             << texts << Dump(before);
    }
  }

  // For who runs more of them (--gtest_output=xml).
  void TellFigures() const {
    RecordProperty("trees", std::to_string(trees));
    RecordProperty("trees with losses", std::to_string(trees_with_losses));
    for (const auto& [reason, count] : losses) RecordProperty(reason, std::to_string(count));
  }

  std::size_t trees = 0;
  std::size_t trees_with_losses = 0;
  std::map<std::string, std::size_t> losses;
};

TEST_F(RoundTrips, OfPartsThatTwoResourcesNameChangeNothing) {
  const std::vector<std::pair<std::string, std::string>> trees_of_two = {
      // A record that could be read as one of a part of the other.
      {R"({"n": {"@odata.id": "q &&/r/b/y", "k": 1}})", R"({"y": [1, 2, 3]})"},
      // One key for an empty object and a list, for an empty list and a hash.
      {R"({"b": {"y": {}}})", R"({"y": [1, 2, 3]})"},
      {R"({"b": {"y": []}})", R"({"y": {"k": 1}})"},
      {R"({"b": []})", R"({"@odata.id": "&&/r/b", "y": 1})"},
      {R"({"b/y": [1]})", R"({"y": []})"},
      {R"({"b/y": {"k": 1}})", R"({"y": {"l": [2]}})"}};
  for (const auto& [top, below] : trees_of_two) {
    std::mt19937_64 generator(1);
    const model::Tree tree = {{"", top}, {"b", below}};
    ASSERT_NO_FATAL_FAILURE(ExpectBack(tree, "/r", generator));
  }
  EXPECT_EQ(trees, trees_of_two.size());
  EXPECT_EQ(trees_with_losses, 0U);
}

// The same record could be that of an empty object whose name ends where the id goes on.
TEST_F(RoundTrips, OfAnIdThatHoldsTheKeyOfItsPlaceChangeNothingThatIsNotListed) {
  for (const std::string id : {"/o &&/r/a /o", "x &&/r/a x"}) {
    SCOPED_TRACE(id);
    std::mt19937_64 generator(1);
    const model::Tree tree = {{"", R"({"a": {"@odata.id": ")" + id + R"(", "v": 1}})"}};
    EXPECT_NO_FATAL_FAILURE(ExpectBack(tree, "/r", generator));
  }
  EXPECT_EQ(trees, 2U);
  for (const auto& [reason, count] : losses) {
    EXPECT_EQ(reason, "can be read in more than one way") << count;
  }
}

TEST_F(RoundTrips, OfAPartAtTheKeyThatAnIdHoldsChangeNothingThatIsNotListed) {
  for (const char* document :
       {R"({"a": {"@odata.id": "/o &&/r/a /o", "v": 1}, "a ": {"o": {"k": 2}}})",
        R"({"b": {"@odata.id": "/o &&/r/a /o", "v": 1}, "a /o": {"k": 2}})",
        R"({"b": {"@odata.id": "/o", "v": 1}, "a /o": {"k": 2}})"}) {
    SCOPED_TRACE(document);
    std::mt19937_64 generator(1);
    EXPECT_NO_FATAL_FAILURE(ExpectBack({{"", document}}, "/r", generator));
  }
  EXPECT_EQ(trees, 3U);
}

TEST_F(RoundTrips, OfNastyTreesChangeNothingThatIsNotListed) {
  const std::vector<std::string> uris = {"/redfish", "/redfish/", "/redfish/v1", "/", "/a b"};
  const std::uint64_t count = 300 * TestFactor();
  for (std::uint64_t seed = 0; seed < count; ++seed) {
    std::mt19937_64 generator(9800000 + seed);
    const std::string& uri = uris[static_cast<std::size_t>(seed % uris.size())];
    const model::Tree tree = NastyTree(generator, uri);
    ASSERT_NO_FATAL_FAILURE(ExpectBack(tree, uri, generator)) << seed;
  }
  TellFigures();
  EXPECT_GT(trees, count / 2);
  EXPECT_LT(trees_with_losses, trees / 2);
}

TEST_F(RoundTrips, OfRandomTreesChangeNothingThatIsNotListed) {
  for (std::uint64_t seed = 0; seed < 100 * TestFactor(); ++seed) {
    std::mt19937_64 generator(9900000 + seed);
    model::RandomTreeOptions options;
    options.uri = seed % 4 == 0 ? "/redfish/" : "/redfish";
    options.members = static_cast<std::size_t>(1 + seed % 6);
    const model::Tree tree = model::RandomTree(generator, options);
    ASSERT_NO_FATAL_FAILURE(ExpectBack(tree, options.uri, generator)) << seed;
  }
  TellFigures();
  EXPECT_GT(trees, 50U * TestFactor());
  EXPECT_LT(trees_with_losses, trees * 2 / 3);
}

}  // namespace

}  // namespace ostrafel
