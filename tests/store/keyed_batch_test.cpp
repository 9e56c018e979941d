// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/keyed_batch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/store_state.h"

namespace ostrafel {

namespace {

std::vector<std::string> KeysOf(const KeyedBatch<KeptTexts>& batch) {
  std::vector<std::string> keys;
  for (const auto& [key, texts] : batch) keys.emplace_back(key);
  return keys;
}

TEST(KeyedBatch, KeysComeInAscendingByteOrder) {
  KeyedBatch<KeptTexts> batch;
  for (const char* key : {"b", "\xC3\xA9", "ab", "a", "Z"}) QueueText(key, "x", &batch);
  EXPECT_EQ(KeysOf(batch), (std::vector<std::string>{"Z", "a", "ab", "b", "\xC3\xA9"}));
}

TEST(KeyedBatch, AKeyIsFoundAgainWhateverWasAskedForLast) {
  KeyedBatch<KeptTexts> batch;
  for (const char* key : {"a", "a", "b", "a", "b", "ab", "a"}) QueueText(key, "x", &batch);
  EXPECT_EQ(KeysOf(batch), (std::vector<std::string>{"a", "ab", "b"}));
  EXPECT_EQ(batch["a"].size(), 4U);
  EXPECT_EQ(batch["ab"].size(), 1U);
  EXPECT_EQ(batch["b"].size(), 2U);
}

TEST(KeyedBatch, AClearedBatchHoldsNothingOfWhatWasThere) {
  KeyedBatch<KeptTexts> batch;
  QueueText("a", "x", &batch);
  batch.clear();
  EXPECT_TRUE(batch.empty());
  EXPECT_TRUE(batch["a"].empty());
  EXPECT_EQ(batch.size(), 1U);
}

TEST(KeyedBatch, KeysAndTextsAreCopies) {
  KeyedBatch<KeptTexts> batch;
  std::string key = "key";
  std::string text = "text";
  QueueText(key.c_str(), text, &batch);
  key = text = "else";
  EXPECT_EQ(KeysOf(batch), std::vector<std::string>{"key"});
  EXPECT_STREQ(batch["key"].front(), "text");
}

TEST(KeyedBatch, TextsStayWholeBesideManyAndLongOnes) {
  KeyedBatch<KeptTexts> batch;
  std::vector<std::string> texts;
  for (int i = 0; i < 3000; ++i) {
    texts.push_back(std::string(static_cast<std::size_t>(i % 97), 'x') + std::to_string(i));
  }
  texts.emplace_back(1 << 20, 'l');
  texts.emplace_back("");
  for (int round = 0; round < 2; ++round) {
    for (const std::string& text : texts) QueueText("key", text, &batch);
    const KeptTexts& kept = batch["key"];
    EXPECT_EQ(std::vector<std::string>(kept.begin(), kept.end()), texts);
    batch.clear();
  }
}

}  // namespace

}  // namespace ostrafel
