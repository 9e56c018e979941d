// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/shrink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "model/shrink_json.h"
#include "model/shrink_list.h"
#include "support/temp_directory.h"

namespace model {
namespace {

constexpr std::chrono::seconds kLongEnough(60);

// Random runs over trees with this member name in some of their documents.
Sequence RandomSequence(std::uint64_t seed, int runs) {
  std::mt19937_64 generator(seed);
  Sequence sequence;
  for (int run = 0; run < runs; ++run) {
    sequence.push_back({run == 0 ? "create" : "update", "/redfish", RandomTree(generator, {})});
  }
  return sequence;
}

// True when a value of this kind has this name, anywhere in a document.
bool HasMember(const JsonValue& value, const std::string& name, JsonValue::Kind kind) {
  const auto has_member = [&](const JsonMember& member) {
    return (member.name == name && member.value.kind == kind) ||
           HasMember(member.value, name, kind);
  };
  const auto has_element = [&](const JsonValue& element) { return HasMember(element, name, kind); };
  return std::any_of(value.members.begin(), value.members.end(), has_member) ||
         std::any_of(value.elements.begin(), value.elements.end(), has_element);
}

class ShrinkTest : public testing::Test {
 protected:
  JsonValue Parse(const std::string& text) {
    std::string err;
    const auto value = LoadJson(folder.Write("document.json", text), err);
    EXPECT_TRUE(value) << text << err;
    return value.value_or(JsonValue());
  }

  // True when a document of the sequence has such a member.
  bool AnyDocumentHas(const Sequence& sequence, const std::string& name, JsonValue::Kind kind) {
    for (const PlannedRun& run : sequence) {
      for (const TreeFolder& part : run.tree) {
        if (part.document && HasMember(Parse(*part.document), name, kind)) return true;
      }
    }
    return false;
  }

 private:
  TempDirectory folder;
};

TEST(ShrinkList, KeepsExactlyWhatIsNeeded) {
  std::vector<int> items(1000);
  for (std::size_t i = 0; i < items.size(); ++i) items[i] = static_cast<int>(i);
  int asked = 0;
  const auto needed = [&](const std::vector<int>& fewer) {
    ++asked;
    return std::count(fewer.begin(), fewer.end(), 17) +
               std::count(fewer.begin(), fewer.end(), 900) ==
           2;
  };
  EXPECT_EQ(ShrinkList(items, needed), (std::vector<int>{17, 900}));
  EXPECT_LT(asked, 100);  // halves before single items
}

TEST_F(ShrinkTest, JsonTextIsReadBackAsTheSameValue) {
  std::mt19937_64 generator(11);
  for (int i = 0; i < 200; ++i) {
    const std::string text = JsonText(Parse(RandomDocument(generator, {}, "/redfish")));
    EXPECT_EQ(JsonText(Parse(text)), text);
  }
  EXPECT_EQ(JsonText(Parse(R"({ "a\n\"\\" : [ 1, -0.10, 1e300, 5.0, true, false, null, {} ] })")),
            R"({"a\u000a\"\\":[1,-0.1,1e+300,5.0,true,false,null,{}]})");
}

TEST_F(ShrinkTest, ValuesAreReplacedByTheSimplestThatIsAccepted) {
  const JsonValue value = Parse(R"({"a": {"b": [1, {"long name": "some text"}, 2.5], "c": 3}})");
  const auto has_x = [](const JsonValue& simpler) {
    return JsonText(simpler).find('x') != std::string::npos;
  };
  EXPECT_EQ(JsonText(ShrinkJson(value, has_x)), R"({"":"x"})");
  const auto is_object = [](const JsonValue& simpler) {
    return simpler.kind == JsonValue::Kind::kObject;
  };
  EXPECT_EQ(JsonText(ShrinkJson(value, is_object)), "{}");
}

TEST_F(ShrinkTest, NoObjectIsGivenTwoMembersOfOneName) {
  const JsonValue value = Parse(R"({"Aa": 1, "Ab": 2})");
  const auto has_two = [](const JsonValue& simpler) { return simpler.members.size() == 2; };
  EXPECT_EQ(JsonText(ShrinkJson(value, has_two)), R"({"":1,"b":2})");
}

TEST_F(ShrinkTest, ASequenceIsReducedToTheOneMemberThatMatters) {
  for (const std::uint64_t seed : {1U, 2U, 3U, 4U}) {
    Sequence sequence = RandomSequence(seed, 4);
    sequence[2].tree.push_back(
        {"/Deep/Folder", R"({"A": 1, "B": {"c": [1, {"x": [1, 2, {"y": null}]}]}})"});
    const auto fails = [&](const Sequence& candidate) {
      return AnyDocumentHas(candidate, "x", JsonValue::Kind::kArray);
    };
    const Shrunk shrunk = Shrink(sequence, fails, kLongEnough);
    ASSERT_EQ(shrunk.sequence.size(), 1U) << Describe(shrunk.sequence);
    ASSERT_EQ(shrunk.sequence[0].tree.size(), 1U) << Describe(shrunk.sequence);
    EXPECT_EQ(shrunk.sequence[0].tree[0].document, R"({"x":[]})");
    EXPECT_EQ(shrunk.sequence[0].tree[0].path, "");
    EXPECT_TRUE(shrunk.is_whole);
    EXPECT_LT(shrunk.attempts, 200U);
  }
}

TEST_F(ShrinkTest, NamesThatMustAgreeAreShortenedTogether) {
  const Sequence sequence = {
      {"create", "/redfish", {{"/Chassis", R"({"A": {"@odata.id": "/redfish/Chassis"}})"}}}};
  // The id is the key of the folder that holds it.
  const auto fails = [](const Sequence& candidate) {
    if (candidate.empty() || candidate[0].tree.empty()) return false;
    const TreeFolder& part = candidate[0].tree[0];
    const std::string key = candidate[0].uri + part.path;
    return !part.path.empty() && part.document &&
           part.document->find("\"@odata.id\":\"" + key + "\"") != std::string::npos;
  };
  EXPECT_EQ(Describe(Shrink(sequence, fails, kLongEnough).sequence),
            "Ostrafel create TREE /b\n"
            "  TREE/a/index.json: {\"@odata.id\":\"/b/a\"}\n");
}

TEST_F(ShrinkTest, TheSearchEndsWhenTheTimeIsUp) {
  const Sequence sequence = RandomSequence(5, 4);
  const auto start = std::chrono::steady_clock::now();
  const auto fails = [](const Sequence& candidate) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(5);
    while (std::chrono::steady_clock::now() < end) continue;
    return Describe(candidate).size() % 2 == 1;  // any sequence, now and then
  };
  const Shrunk shrunk = Shrink(sequence, fails, std::chrono::milliseconds(100));
  EXPECT_FALSE(shrunk.is_whole);
  EXPECT_LE(shrunk.attempts, 21U);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

}  // namespace
}  // namespace model
