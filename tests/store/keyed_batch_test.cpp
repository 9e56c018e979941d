// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/keyed_batch.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "store/store_state.h"

namespace ostrafel {

namespace {

void Append(const std::string& key, const std::string& value, KeyedBatch<KeptStrings>* batch) {
  const char* kept = batch->Keep(std::array<std::string_view, 1>{value});
  (*batch)[key.c_str()].push_back(kept);
}

std::vector<std::string> KeysOf(const KeyedBatch<KeptStrings>& batch) {
  std::vector<std::string> keys;
  for (const auto& [key, strings] : batch) keys.emplace_back(key);
  return keys;
}

TEST(KeyedBatch, KeysComeInAscendingByteOrder) {
  KeyedBatch<KeptStrings> batch;
  for (const char* key : {"b", "\xC3\xA9", "ab", "a", "Z"}) Append(key, "x", &batch);
  EXPECT_EQ(KeysOf(batch), (std::vector<std::string>{"Z", "a", "ab", "b", "\xC3\xA9"}));
}

TEST(KeyedBatch, AKeyIsFoundAgainWhateverWasAskedForLast) {
  KeyedBatch<KeptStrings> batch;
  for (const char* key : {"a", "a", "b", "a", "b", "ab", "a"}) Append(key, "x", &batch);
  EXPECT_EQ(KeysOf(batch), (std::vector<std::string>{"a", "ab", "b"}));
  EXPECT_EQ(batch["a"].size(), 4U);
  EXPECT_EQ(batch["ab"].size(), 1U);
  EXPECT_EQ(batch["b"].size(), 2U);
}

TEST(KeyedBatch, AClearedBatchHoldsNothingOfWhatWasThere) {
  KeyedBatch<KeptStrings> batch;
  Append("a", "x", &batch);
  batch.clear();
  EXPECT_TRUE(batch.empty());
  EXPECT_TRUE(batch["a"].empty());
  EXPECT_EQ(batch.size(), 1U);
}

TEST(KeyedBatch, KeysAndStringsAreCopies) {
  KeyedBatch<KeptStrings> batch;
  std::string key = "key";
  std::string text = "text";
  Append(key, text, &batch);
  key = text = "else";
  EXPECT_EQ(KeysOf(batch), std::vector<std::string>{"key"});
  EXPECT_STREQ(batch["key"].front(), "text");
}

TEST(KeyedBatch, PiecesAreJoined) {
  KeyedBatch<KeptStrings> batch;
  EXPECT_STREQ(batch.Keep(std::array<std::string_view, 3>{"&&Array ", "", "A /r"}), "&&Array A /r");
}

TEST(KeyedBatch, StringsStayWholeBesideManyAndLongOnes) {
  KeyedBatch<KeptStrings> batch;
  std::vector<std::string> strings;
  for (int i = 0; i < 3000; ++i) {
    strings.push_back(std::string(static_cast<std::size_t>(i % 97), 'x') + std::to_string(i));
  }
  strings.emplace_back(1 << 20, 'l');
  strings.emplace_back("");
  for (int round = 0; round < 2; ++round) {
    for (const std::string& text : strings) Append("key", text, &batch);
    const KeptStrings& kept = batch["key"];
    EXPECT_EQ(std::vector<std::string>(kept.begin(), kept.end()), strings);
    batch.clear();
  }
}

}  // namespace

}  // namespace ostrafel
