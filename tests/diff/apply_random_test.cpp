// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Random trees over random stores: what ostrafel-diff shows, and what --apply leaves.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "diff/apply_fixture.h"
#include "diff/shown_differences.h"
#include "model/random_tree.h"
#include "support/test_factor.h"

namespace {

class RandomApplies : public ApplyTest {
 protected:
  struct Pair {
    model::RandomTreeOptions options;
    model::Store before;
  };

  // Makes a store, and a tree in the test's folder.
  Pair MakePair(std::uint64_t seed) {
    std::mt19937_64 generator(seed);
    Pair pair;
    pair.options.uri = seed % 4 == 0 ? "/redfish/" : "/redfish";
    pair.before = RandomStore(generator, pair.options);
    files_.emplace();
    model::WriteRandomTree(generator, files_->path(), pair.options);
    return pair;
  }

  [[nodiscard]] std::string path() const { return files_->path(); }

  unsigned failures = 0;  // the runs of Ostrafel so far that did not end with status 0

 private:
  std::optional<TempDirectory> files_;
};

// The store after a create in place of what it removes and what it writes.
model::Store InPlace(const model::Store& before, const model::Store& created,
                     const std::string& uri) {
  model::Store expected = created;
  for (const auto& [key, stored] : before) {
    if (!IsRemovedBy(uri, key)) expected.emplace(key, stored);
  }
  return expected;
}

TEST_F(RandomApplies, LeaveWhatACreateOnAnEmptyStoreLeaves) {
  for (std::uint64_t seed = 0; seed < 60 * TestFactor(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const Pair pair = MakePair(9800000 + seed);
    const std::string& uri = pair.options.uri;
    int status = 0;
    const model::Store created = After("create", {}, path(), uri, &status);
    failures += status == 0 ? 0 : 1;
    store.Fill(pair.before);
    std::vector<std::string> arguments = {"--apply", path(), uri};
    if (seed % 3 == 0) arguments.push_back("--batch=" + std::to_string(1 + seed % 5));
    const Finished finished = Diff(arguments);
    ASSERT_EQ(finished.status, status == 0 ? 0 : 2) << finished.err;
    const model::Store expected = status == 0 ? InPlace(pair.before, created, uri) : pair.before;
    ASSERT_EQ(StoreDifference(store.Contents(), expected), "");
    if (status != 0 || seed % 8 != 0) continue;
    ExpectNothingLeft({path(), uri});
    if (HasFailure()) return;
  }
  EXPECT_LT(failures, 20 * TestFactor());
}

// What the store is to hold of a key of the tree, with what only the store had.
std::string WithExtraDifference(const model::StoredValue& before, const model::StoredValue& created,
                                const model::StoredValue& stored) {
  if (before.value.index() != created.value.index()) {
    return StoreDifference({{"", stored}}, {{"", created}});
  }
  if (const auto* wanted = std::get_if<model::List>(&created.value)) {
    auto next = wanted->begin();
    for (const std::string& element : std::get<model::List>(stored.value)) {
      if (next != wanted->end() && element == *next) ++next;
    }
    return next == wanted->end() ? "" : model::Dump({{"not all in order of", created}});
  }
  model::Hash hash = std::get<model::Hash>(created.value);
  const auto& extra = std::get<model::Hash>(before.value);
  hash.insert(extra.begin(), extra.end());
  return StoreDifference({{"", stored}}, {{"", {hash}}});
}

TEST_F(RandomApplies, WithoutExtraLeaveWhatOnlyTheStoreHas) {
  for (std::uint64_t seed = 0; seed < 25 * TestFactor(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const Pair pair = MakePair(9840000 + seed);
    int status = 0;
    const model::Store created = After("create", {}, path(), pair.options.uri, &status);
    if (status != 0) continue;
    store.Fill(pair.before);
    ASSERT_EQ(Diff({"--apply", "--no-extra", path(), pair.options.uri}).status, 0);
    ASSERT_EQ(Diff({"--no-extra", path(), pair.options.uri}).status, 0);
    model::Store expected = pair.before;
    expected.insert(created.begin(), created.end());
    const model::Store contents = store.Contents();
    ASSERT_EQ(contents.size(), expected.size());
    for (const auto& [key, before] : expected) {
      ASSERT_EQ(contents.count(key), 1U) << key;
      const auto wanted = created.find(key);
      const std::string difference =
          wanted == created.end() ? StoreDifference({{key, contents.at(key)}}, {{key, before}})
                                  : WithExtraDifference(before, wanted->second, contents.at(key));
      ASSERT_EQ(difference, "") << key;
    }
  }
}

TEST_F(RandomApplies, OfAnUpdateLeaveWhatTheUpdateLeaves) {
  for (std::uint64_t seed = 0; seed < 25 * TestFactor(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const Pair pair = MakePair(9810000 + seed);
    const std::string& uri = pair.options.uri;
    int status = 0;
    const model::Store updated = After("update", pair.before, path(), uri, &status);
    failures += status == 0 ? 0 : 1;

    store.Fill(pair.before);
    const Finished finished = Diff({"--update", "--apply", path(), uri});
    ASSERT_EQ(finished.status, status == 0 ? 0 : 2) << finished.err;
    const model::Store& expected = status == 0 ? updated : pair.before;
    ASSERT_EQ(StoreDifference(store.Contents(), expected), "");
  }
  EXPECT_LT(failures, 15 * TestFactor());
}

// JSON has no other bytes than those of characters, so the stores have no others either.
TEST_F(RandomApplies, OfAnUpdateShowBeforehandWhatTheUpdateChanges) {
  for (std::uint64_t seed = 0; seed < 25 * TestFactor(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937_64 generator(9820000 + seed);
    const model::RandomTreeOptions options;
    const TempDirectory first;
    model::WriteRandomTree(generator, first.path(), options);
    int status = 0;
    model::Store before = After("create", {}, first.path(), options.uri, &status);
    for (std::uint64_t changes = seed % 4; changes > 0; --changes) {
      (void)ChangeAtRandom(generator, options.uri, &before);
    }
    const TempDirectory second;
    model::WriteRandomTree(generator, second.path(), options);
    const model::Store updated = After("update", before, second.path(), options.uri, &status);

    store.Fill(before);
    const Finished shown = Diff({"--update", "--format=json", second.path(), options.uri});
    const int expected = StoreDifference(before, updated).empty() ? 0 : 1;
    ASSERT_EQ(shown.status, status == 0 ? expected : 2) << shown.err;
    if (status == 0) {
      ASSERT_EQ(DifferenceToShown(shown.out, before, updated), "");
    } else {
      failures += 1;
      EXPECT_NE(shown.err.find("an update of " + second.path() + " would end with status 255"),
                std::string::npos)
          << shown.err;
    }
  }
  EXPECT_LT(failures, 15 * TestFactor());
}

TEST_F(RandomApplies, ShowAndUndoExactlyWhatOthersHaveChanged) {
  for (std::uint64_t seed = 0; seed < 60 * TestFactor(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937_64 generator(9830000 + seed);
    const model::RandomTreeOptions options;
    const TempDirectory files;
    model::WriteRandomTree(generator, files.path(), options);
    int status = 0;
    const model::Store loaded = After("create", {}, files.path(), options.uri, &status);
    if (status != 0) continue;
    model::Store changed = loaded;
    std::size_t keys = 0;
    const bool is_single = seed % 2 == 0;
    for (std::uint64_t changes = is_single ? 1 : 2 + seed % 5; changes > 0; --changes) {
      keys += ChangeAtRandom(generator, options.uri, &changed);
    }
    store.Fill(changed);
    const Finished shown = RecordedDiff({"--format=json", files.path(), options.uri});
    EXPECT_TRUE(Writes().empty());
    EXPECT_EQ(shown.status, StoreDifference(changed, loaded).empty() ? 0 : 1);
    ASSERT_EQ(DifferenceToShown(shown.out, changed, loaded), "") << shown.out;
    if (is_single) {
      ASSERT_EQ(CountShown(shown.out), keys) << shown.out;
    }
    const Finished applied = Diff({"--apply", files.path(), options.uri});
    ASSERT_EQ(applied.status, 0) << applied.err;
    ASSERT_EQ(StoreDifference(store.Contents(), loaded), "");
  }
}

}  // namespace
