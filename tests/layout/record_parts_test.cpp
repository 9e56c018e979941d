// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/record_parts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "layout/layout.h"

namespace ostrafel {

namespace {

TEST(MemberOfField, OfAScalarIsTheField) {
  EXPECT_EQ(MemberOfField("/r", "Name"), "Name");
  EXPECT_EQ(MemberOfField("/r", "A name /with blanks"), "A name /with blanks");
  EXPECT_EQ(MemberOfField("/r", "&&ETag"), "&&ETag");
  EXPECT_EQ(MemberOfField("/r", ""), "");
}

TEST(MemberOfField, OfAReferenceRecordIsTheNameInIt) {
  EXPECT_EQ(MemberOfField("/r", "&&Object Status &&/r/Status"), "Status");
  EXPECT_EQ(MemberOfField("/r", "&&Array Fans &&/r/Fans"), "Fans");
  EXPECT_EQ(MemberOfField("/r", "&&ObjectRef Chassis /c"), "Chassis");
  EXPECT_EQ(MemberOfField("&&/r/A", "&&Object Own /o"), "Own");
}

TEST(MemberOfField, OfABareMarkerIsTheField) {
  for (const char* field : {"&&Object ", "&&Object Status", "&&Array", "&&Objects a b"}) {
    EXPECT_EQ(MemberOfField("/r", field), field);
  }
}

TEST(MemberOfField, WithBlanksHasTheDerivedKeyAsItsTarget) {
  EXPECT_EQ(MemberOfField("/r", "&&Object My /Name &&/r/My /Name"), "My /Name");
  EXPECT_EQ(MemberOfField("/r/", "&&Array a b &&/r/a b"), "a b");
  EXPECT_EQ(MemberOfField("/a key", "&&Array a &&/a b &&/a key/a &&/a b"), "a &&/a b");
}

TEST(MemberOfField, WithBlanksAndAnotherTargetEndsBeforeTheFirstKey) {
  EXPECT_EQ(MemberOfField("/r", "&&ObjectRef A name /c d /e"), "A name");
  EXPECT_EQ(MemberOfField("/r", "&&ObjectRef A name &&/c d"), "A name");
}

TEST(MemberOfField, WithBlanksAndNoKeyEndsBeforeTheLastBlank) {
  EXPECT_EQ(MemberOfField("/r", "&&ObjectRef A name target"), "A name");
  EXPECT_EQ(MemberOfField("/r", "&&ObjectRef A "), "A");
}

TEST(MemberOfField, IsTheNameOfEveryDerivedKey) {
  for (const std::string key : {"/r", "/r/", "&&/r/A", "/a b", "", "//r//x", "/r/a "}) {
    for (const std::string name :
         {"A", "", "A B", " ", "a /b", "/", "a//b", "&&/r/x", "a &&/r/a"}) {
      const std::string field =
          Join(ReferenceRecord(ParentKind::kHash, ArrayMarker, name, DerivedKey(key, name)));
      EXPECT_EQ(MemberOfField(key, field), name) << key;
    }
  }
}

// Names and targets of pieces that a record is parted by.
std::string RandomName(std::mt19937& generator) {
  const std::vector<std::string> pieces = {"A",   " ",    "/",         "//",           "&&",
                                           "/r",  "&&/r", "&&Object ", "&&ObjectRef ", "&&Array ",
                                           "A B", "\xFF"};
  std::string text;
  for (std::size_t i = generator() % 6; i > 0; --i) text += pieces[generator() % pieces.size()];
  return text;
}

TEST(RecordReadings, HaveWhatTheRecordWasMadeOf) {
  std::mt19937 generator(1);
  for (int round = 0; round < 20000; ++round) {
    const std::string key = RandomName(generator);
    const std::string name = RandomName(generator);
    const bool is_derived = generator() % 3 == 0;
    const std::string target = is_derived ? DerivedKey(key, name) : RandomName(generator);
    const std::string marker =
        std::vector<std::string>{ObjectMarker, ObjectRefMarker, ArrayMarker}[generator() % 3];
    const std::string field = Join(ReferenceRecord(ParentKind::kHash, marker, name, target));
    const RecordReadings readings = RecordReader(key).ReadingsOf(field);
    ASSERT_FALSE(readings.parts.empty()) << field;
    ASSERT_GE(readings.likely, 1U) << field;
    ASSERT_LE(readings.likely, readings.parts.size()) << field;
    const auto is_it = [&](const RecordParts& parts) {
      return parts.marker == marker && parts.name == name && parts.target == target;
    };
    const bool has_derived = readings.parts[0].target == DerivedKey(key, readings.parts[0].name);
    for (const RecordParts& parts : readings.parts) {
      ASSERT_EQ(parts.is_in_place, has_derived && &parts == &readings.parts[0]) << field;
    }
    if (has_derived) {
      ASSERT_EQ(readings.likely, 1U) << field;
    }
    if (is_derived) {
      ASSERT_TRUE(is_it(readings.parts[0])) << key << ": " << field;
      ASSERT_TRUE(readings.parts.size() == 1 || marker == ObjectMarker) << field;
    } else if (readings.parts.size() > 1 || is_it(readings.parts[0])) {
      ASSERT_TRUE(std::any_of(readings.parts.begin(), readings.parts.end(), is_it)) << field;
    } else {
      // Another name's derived key, by chance.
      ASSERT_TRUE(has_derived && marker != ObjectMarker) << field;
    }
    for (const RecordParts& parts : readings.parts) {
      ASSERT_EQ(Join(ReferenceRecord(ParentKind::kHash, parts.marker, parts.name, parts.target)),
                field);
    }
  }
}

// "name|target" of each reading, the likely ones in front of a "-".
std::vector<std::string> Readings(const std::string& field) {
  const RecordReadings readings = RecordReader("/r").ReadingsOf(field);
  std::vector<std::string> texts;
  for (const RecordParts& parts : readings.parts) texts.push_back(parts.name + "|" + parts.target);
  texts.insert(texts.begin() + static_cast<std::ptrdiff_t>(readings.likely), "-");
  return texts;
}

TEST(RecordReadings, AreTheLikelyOnesFirst) {
  using Texts = std::vector<std::string>;
  EXPECT_EQ(Readings("&&ObjectRef A /c"), (Texts{"A|/c", "-"}));
  EXPECT_EQ(Readings("&&ObjectRef A b /c"), (Texts{"A b|/c", "-", "A|b /c"}));
  EXPECT_EQ(Readings("&&ObjectRef A /b /c"), (Texts{"A|/b /c", "A /b|/c", "-"}));
  EXPECT_EQ(Readings("&&ObjectRef A /b c &&d"),
            (Texts{"A|/b c &&d", "A /b c|&&d", "-", "A /b|c &&d"}));
  EXPECT_EQ(Readings("&&ObjectRef A b c"), (Texts{"A b|c", "A|b c", "-"}));
  EXPECT_EQ(Readings("&&ObjectRef  "), (Texts{"|", "-"}));
  EXPECT_EQ(Readings("&&ObjectRef A  "), (Texts{"A |", "A| ", "-"}));
  EXPECT_EQ(Readings("&&Array A &&/r/A"), (Texts{"A|&&/r/A", "-"}));
  EXPECT_EQ(Readings("&&Array A b &&/r/A b"), (Texts{"A b|&&/r/A b", "-"}));
  EXPECT_EQ(Readings("&&Object A /o &&/r/A /o"),
            (Texts{"A /o|&&/r/A /o", "-", "A|/o &&/r/A /o", "A /o &&/r/A|/o"}));
}

TEST(RecordReadings, AreNoneOfWhatIsNoRecord) {
  for (const char* field : {"", "A", "&&ETag", "&&Object", "&&Object ", "&&Object A",
                            "&&Objects a b", "&&object a b", " &&Object a b"}) {
    EXPECT_EQ(Readings(field), std::vector<std::string>{"-"}) << field;
  }
}

TEST(RecordReadings, OfAFieldWithVeryManyBlanksAreFew) {
  // With the square of that it would be a matter of hours.
  const std::string blanks(1000000, ' ');
  std::string keys;
  for (int i = 0; i < 300000; ++i) keys += " &&/r";
  std::string starts;  // of what the derived key begins with
  for (int i = 0; i < 200000; ++i) starts += " &&/r/";
  for (const std::string& rest : {blanks, keys, starts, "A" + keys + "/A", blanks + "/c"}) {
    const RecordReadings readings = RecordReader("/r").ReadingsOf(ObjectMarker + rest);
    EXPECT_FALSE(readings.parts.empty());
    EXPECT_LE(readings.parts.size(), 32U);
  }
}

TEST(ElementParts, AreMarkerAndTarget) {
  for (const std::string marker : {ObjectMarker, ObjectRefMarker, ArrayMarker}) {
    for (const std::string target : {"/c", " ", "a b /c", "&&/r/0", "&&Object x"}) {
      const std::string element =
          Join(ReferenceRecord(ParentKind::kList, marker, "no matter", target));
      const std::optional<RecordParts> parts = RecordReader("&&/r").PartsOf(0, element);
      ASSERT_TRUE(parts) << element;
      EXPECT_EQ(parts->marker, marker);
      EXPECT_EQ(parts->name, "0");
      EXPECT_EQ(parts->target, target);
      EXPECT_EQ(parts->is_in_place, target == "&&/r/0");
    }
  }
}

TEST(ElementParts, MayHaveAnEmptyTargetUnlessItIsAnArrays) {
  for (const std::string marker : {ObjectMarker, ObjectRefMarker}) {
    const std::optional<RecordParts> parts = RecordReader("&&/r").PartsOf(7, marker);
    ASSERT_TRUE(parts) << marker;
    EXPECT_EQ(parts->marker, marker);
    EXPECT_EQ(parts->name, "7");
    EXPECT_EQ(parts->target, "");
  }
  EXPECT_FALSE(RecordReader("&&/r").PartsOf(0, ArrayMarker));
}

TEST(ElementParts, AreNoneOfScalars) {
  for (const char* element : {"", "1", "\"&&Object /x\"", "&&Object", "&&ObjectReference /x"}) {
    EXPECT_FALSE(RecordReader("&&/r").PartsOf(0, element)) << element;
  }
}

TEST(IsDerivedKey, TellsThePrefix) {
  EXPECT_TRUE(IsDerivedKey("&&/r/A"));
  EXPECT_TRUE(IsDerivedKey("&&"));
  EXPECT_FALSE(IsDerivedKey("/r"));
  EXPECT_FALSE(IsDerivedKey("&"));
  EXPECT_FALSE(IsDerivedKey(""));
}

}  // namespace

}  // namespace ostrafel
