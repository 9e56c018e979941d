// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/json_pointer.h"

#include <gtest/gtest.h>

#include "document/document.h"

namespace ostrafel {

namespace {

class JsonPointer : public ::testing::Test {
 protected:
  /// What a pointer leads to, as JSON; "nowhere" when it leads nowhere.
  [[nodiscard]] std::string At(std::string_view pointer) const {
    const json_t* value = ValueAt(root_.get(), pointer);
    if (value == nullptr) return "nowhere";
    char* text = json_dumps(value, JSON_ENCODE_ANY | JSON_COMPACT);
    std::string result = text;
    free(text);  // NOLINT: jansson allocates it with malloc
    return result;
  }

 private:
  Document root_{
      json_loads(R"({"a": [5, {"b": 6}, [7]], "": {"": 8}, "c/d": 9, "~e": 10, "01": 11, "-": 12})",
                 0, nullptr)};
};

TEST_F(JsonPointer, LeadsToMembersAndElements) {
  EXPECT_EQ(At("/a/0"), "5");
  EXPECT_EQ(At("/a/1"), R"({"b":6})");
  EXPECT_EQ(At("/a/1/b"), "6");
  EXPECT_EQ(At("/a/2/0"), "7");
  EXPECT_EQ(At("/01"), "11");
  EXPECT_EQ(At("/-"), "12");
}

TEST_F(JsonPointer, LeadsToTheRootWhenItIsEmpty) {
  EXPECT_EQ(At("").front(), '{');
  EXPECT_EQ(ValueAt(nullptr, ""), nullptr);
}

TEST_F(JsonPointer, TakesEmptyAndEscapedNames) {
  EXPECT_EQ(At("/"), R"({"":8})");
  EXPECT_EQ(At("//"), "8");
  EXPECT_EQ(At("/c~1d"), "9");
  EXPECT_EQ(At("/~0e"), "10");
}

TEST_F(JsonPointer, LeadsNowhereWhereNothingIs) {
  for (const char* pointer : {"/x", "/a/3", "/a/b", "/a/0/0", "/a/", "/c/d", "///"}) {
    EXPECT_EQ(At(pointer), "nowhere") << pointer;
  }
}

TEST_F(JsonPointer, TakesNoIndexThatIsNotWrittenAsOne) {
  for (const char* pointer :
       {"/a/00", "/a/01", "/a/+1", "/a/-1", "/a/-", "/a/1 ", "/a/99999999999999999999999999"}) {
    EXPECT_EQ(At(pointer), "nowhere") << pointer;
  }
}

TEST_F(JsonPointer, LeadsNowhereWhenItIsNone) {
  for (const char* pointer : {"a", "a/0", "#", "/~", "/~2", "/a~"}) {
    EXPECT_EQ(At(pointer), "nowhere") << pointer;
  }
  EXPECT_EQ(At(std::string_view("/01\0", 4)), "nowhere");
}

TEST(StepsOfPointers, HaveNamesEscaped) {
  std::string pointer = "/a";
  AppendStep("~1/0", &pointer);
  EXPECT_EQ(pointer, "/a/~01~10");
  AppendStep("", &pointer);
  EXPECT_EQ(pointer, "/a/~01~10/");
  EXPECT_EQ(ChildPointer("/a", "~/"), "/a/~0~1");
  EXPECT_EQ(NameOfStep("~01~10"), "~1/0");
  EXPECT_EQ(NameOfStep(""), "");
  EXPECT_EQ(NameOfStep("~"), std::nullopt);
  EXPECT_EQ(NameOfStep("~2"), std::nullopt);
}

TEST(PercentDecoding, ReplacesDigitsByTheirByte) {
  EXPECT_EQ(DecodePercents(""), "");
  EXPECT_EQ(DecodePercents("a%20b%2f%2F%c3%A4"), "a b//\xc3\xa4");
  EXPECT_EQ(DecodePercents("%00"), std::string(1, '\0'));
}

TEST(PercentDecoding, RefusesAPercentWithoutDigits) {
  for (const char* text : {"%", "a%2", "%g0", "%0G", "%%20", "% 2"}) {
    EXPECT_EQ(DecodePercents(text), std::nullopt) << text;
  }
}

}  // namespace

}  // namespace ostrafel
