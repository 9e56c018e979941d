// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/json_positions.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "support/repeated.h"
#include "support/test_factor.h"
#include "text/position_checks.h"
#include "text/text_file.h"

namespace ostrafel {

namespace {

std::string Show(const Position& position) {
  return std::to_string(position.line) + ":" + std::to_string(position.column);
}

// "NAME VALUE" of one value; "none" when it is not found.
std::string Locate(const std::string& text, const std::string& pointer) {
  const auto found = LocateValues(text, {pointer});
  if (found.empty()) return "none";
  const ValuePosition& position = found.at(pointer);
  return Show(position.name) + " " + Show(position.value);
}

// "POINTER PLACE PLACE…" of each duplicate member.
std::vector<std::string> Duplicates(const std::string& text) {
  std::vector<std::string> shown;
  for (const DuplicateMember& duplicate : FindDuplicateMembers(text)) {
    shown.push_back(duplicate.pointer);
    for (const Position& name : duplicate.names) shown.back() += " " + Show(name);
  }
  return shown;
}

using Strings = std::vector<std::string>;

// --- Values --------------------------------------------------------------------------------------

TEST(ValuePositions, AreThoseOfNameAndValue) {
  const std::string text = "{\"A\": 1,\n  \"B\" : [true, {\"C\":null}]}";
  EXPECT_EQ(Locate(text, ""), "1:1 1:1");
  EXPECT_EQ(Locate(text, "/A"), "1:2 1:7");
  EXPECT_EQ(Locate(text, "/B"), "2:3 2:9");
  EXPECT_EQ(Locate(text, "/B/0"), "2:10 2:10");
  EXPECT_EQ(Locate(text, "/B/1"), "2:16 2:16");
  EXPECT_EQ(Locate(text, "/B/1/C"), "2:17 2:21");
}

TEST(ValuePositions, AreOnlyThoseThatAreWanted) {
  const auto found = LocateValues(R"({"A": {"B": 1, "C": 2}, "D": [3]})", {"/A/C", "/D"});
  EXPECT_EQ(found.size(), 2U);
  EXPECT_EQ(found.count("/A/C"), 1U);
  EXPECT_EQ(found.count("/D"), 1U);
  EXPECT_TRUE(LocateValues("{}", {}).empty());
}

TEST(ValuePositions, OfWhatIsNotThereAreLeftOut) {
  const std::string text = R"({"A": [1, {"x": 2}], "B": {"0": 3}, "01": 4})";
  for (const char* pointer : {"/C", "/A/2", "/A/00", "/A/-", "/A/x", "/A/1/x/y", "/B/1", "A", "A/",
                              "/A/", "/", "//", "/B~", "/B~2", "/1"}) {
    EXPECT_EQ(Locate(text, pointer), "none") << pointer;
  }
}

TEST(ValuePositions, CountCharactersAndNotBytes) {
  EXPECT_EQ(Locate("{\"ä€🙂\": 1, \"B\": 2}", "/B"), "1:12 1:17");
  EXPECT_EQ(Locate("{\"a\": \"ä€🙂\", \"B\": 2}", "/B"), "1:14 1:19");
}

TEST(ValuePositions, CountATabAndACarriageReturnAsOneCharacter) {
  EXPECT_EQ(Locate("{\t\"A\":\t1,\r\n\t\"B\"\r:\r\n2}", "/A"), "1:3 1:8");
  EXPECT_EQ(Locate("{\t\"A\":\t1,\r\n\t\"B\"\r:\r\n2}", "/B"), "2:2 3:1");
}

TEST(ValuePositions, DoNotCountAByteOrderMark) {
  EXPECT_EQ(Locate("\xEF\xBB\xBF{\"A\": 1}", "/A"), "1:2 1:7");
  EXPECT_EQ(Locate("\xEF\xBB\xBF{\"\xEF\xBB\xBF\": 1}", "/\xEF\xBB\xBF"), "1:2 1:7");
}

TEST(ValuePositions, FollowAnyKindOfNumber) {
  EXPECT_EQ(Locate("{\"A\":-1.5,\"B\":2}", "/B"), "1:11 1:15");
  EXPECT_EQ(Locate("{\"A\":1e5 ,\"B\":2}", "/B"), "1:11 1:15");
  EXPECT_EQ(Locate("[[0],1]", "/1"), "1:6 1:6");
  EXPECT_EQ(Locate("[{\"A\":0},1]", "/1"), "1:10 1:10");
  EXPECT_EQ(Locate("[0\n,1]", "/1"), "2:2 2:2");
  for (const char* number : {"0", "-0", "12", "-1.5", "1e5", "1E+5", "0.25e-10",
                             "9223372036854775807", "-9223372036854775808", "1e-999"}) {
    for (const char* blank : {"", " ", "\t", "\r", "\n"}) {
      const std::string text = number + std::string(blank);
      EXPECT_EQ(PositionFault("[" + text + "," + text + ",{\"A\":" + text + "},3]"), "") << text;
    }
  }
}

// As jansson does.
TEST(ValuePositions, PassOverANulAfterANumberOrAWord) {
  const std::string nul(1, '\0');
  EXPECT_EQ(PositionFault("[1" + nul + ",null" + nul + "\n,{\"A\":1e5" + nul + "}]"), "");
  EXPECT_EQ(Locate("[1" + nul + ",true" + nul + ",3]", "/2"), "1:11 1:11");
}

TEST(ValuePositions, TakeNamesWithoutTheirEscapes) {
  EXPECT_EQ(Locate(R"({"\u0041": 1})", "/A"), "1:2 1:12");
  EXPECT_EQ(Locate(R"({"a\"b\\c\/d": 1, "z": 2})", R"(/a"b\c~1d)"), "1:2 1:16");
  EXPECT_EQ(Locate(R"({"\ud83d\ude42": 1})", "/🙂"), "1:2 1:18");
  EXPECT_EQ(Locate(R"({"A": "\u0042", "B": "}]\",{["})", "/B"), "1:17 1:22");
}

TEST(ValuePositions, TakePointersWithTheirEscapes) {
  const std::string text = R"({"a/b": 1, "a": {"b": 2}, "~": 3, "~1": 4, "": {"": 5}})";
  EXPECT_EQ(Locate(text, "/a~1b"), "1:2 1:9");
  EXPECT_EQ(Locate(text, "/a/b"), "1:18 1:23");
  EXPECT_EQ(Locate(text, "/~0"), "1:27 1:32");
  EXPECT_EQ(Locate(text, "/~01"), "1:35 1:41");
  EXPECT_EQ(Locate(text, "/"), "1:44 1:48");
  EXPECT_EQ(Locate(text, "//"), "1:49 1:53");
}

TEST(ValuePositions, OfARepeatedNameAreThoseOfTheLast) {
  EXPECT_EQ(Locate(R"({"A": 1, "B": 2, "A": 3})", "/A"), "1:18 1:23");
  EXPECT_EQ(Locate(R"({"A": 1, "\u0041": 3})", "/A"), "1:10 1:20");
  EXPECT_EQ(Locate(R"({"A": {"B": 1}, "A": {"B": 2}})", "/A/B"), "1:23 1:28");
}

TEST(ValuePositions, WithinAnOverwrittenValueAreDropped) {
  EXPECT_EQ(Locate(R"({"A": {"B": 1}, "A": {}})", "/A/B"), "none");
  EXPECT_EQ(Locate(R"({"A": [[1]], "A": [2]})", "/A/0/0"), "none");
  EXPECT_EQ(Locate(R"({"A": [[1]], "A": 2})", "/A"), "1:14 1:19");
  // Not what only looks as if it were within.
  const auto found = LocateValues(R"({"A": {"B": 1}, "A-": 2, "A0": 3, "AB": 4, "A": 5})",
                                  {"/A/B", "/A-", "/A0", "/AB", "/A"});
  EXPECT_EQ(found.size(), 4U);
  EXPECT_EQ(found.count("/A/B"), 0U);
}

TEST(ValuePositions, StopWhereTheTextIsNoJson) {
  EXPECT_EQ(Locate(R"({"A": 1, "B": nul, "C": 2})", "/A"), "1:2 1:7");
  EXPECT_EQ(Locate(R"({"A": 1, "B": nul, "C": 2})", "/C"), "none");
  for (const char* text : {"", " ", "\xEF\xBB\xBF", "\xEF\xBB", "}", "]", "\"", "{\"A\"", "[1"}) {
    EXPECT_EQ(Locate(text, "/A"), "none") << text;
  }
}

TEST(ValuePositions, TakeAsManyLevelsAsTheParser) {
  std::set<std::string> pointers;
  for (std::size_t level = 0; level < 2048; ++level) pointers.insert(Repeated("/a", level));
  const std::string text = Repeated("{\"a\":", 2047) + "{}" + Repeated("}", 2047);
  const auto found = LocateValues(text, pointers);
  ASSERT_EQ(found.size(), 2048U);
  for (const auto& [pointer, position] : found) {
    const std::size_t level = pointer.size() / 2;
    EXPECT_EQ(position.value.column, 5 * level + 1);
    EXPECT_EQ(position.name.column, level == 0 ? 1 : 5 * level - 3);
  }
  EXPECT_EQ(PositionFault(Repeated("[{\"a\":", 100) + "0" + Repeated("}]", 100)), "");
}

TEST(ValuePositions, SurviveMoreLevelsThanTheParserTakes) {
  const std::string text = Repeated("[{\"a\":", 500000);
  EXPECT_EQ(Locate(text, "/0/a/0"), "1:8 1:8");
  EXPECT_TRUE(Duplicates(text).empty());
}

// --- Duplicate members ---------------------------------------------------------------------------

TEST(DuplicateMembers, AreNoneWhereAllNamesOfAnObjectDiffer) {
  EXPECT_EQ(Duplicates("{}"), Strings{});
  EXPECT_EQ(Duplicates(R"({"A": {"A": 1}, "a": {"A": 1}, "B": ["A", "A"], "C": "A"})"), Strings{});
  EXPECT_EQ(Duplicates(R"([{"A": 1}, {"A": 1}, {"A": {"A": "\"A\": 1, \"A\": 2"}}])"), Strings{});
  EXPECT_EQ(Duplicates(R"({"A\\": 1, "A": 1, "A\"": 1, "": 2, " ": 3})"), Strings{});
}

TEST(DuplicateMembers, HaveAllTheirPlaces) {
  EXPECT_EQ(Duplicates("{\"A\": 1,\n \"B\": 2, \"A\": 3,\n\"A\"\n: 4}"),
            Strings{"/A 1:2 2:10 3:1"});
}

TEST(DuplicateMembers, AreFoundAtAnyDepthAndInTheOrderOfTheirSecondPlaces) {
  EXPECT_EQ(Duplicates(R"({"A": [0, {"x/y": 1, "~": 2, "~": 3, "x/y": 4}], "B": 5, "B": 6})"),
            (Strings{"/A/1/~0 1:22 1:30", "/A/1/x~1y 1:12 1:38", "/B 1:50 1:58"}));
}

TEST(DuplicateMembers, AreComparedWithoutTheirEscapes) {
  EXPECT_EQ(Duplicates(R"({"A": 1, "\u0041": 2})"), Strings{"/A 1:2 1:10"});
  EXPECT_EQ(Duplicates(R"({"\u0041": 1, "A": 2})"), Strings{"/A 1:2 1:15"});
  EXPECT_EQ(Duplicates(R"({"\/": 1, "/": 2, "": 3, "": 4})"),
            (Strings{"/~1 1:2 1:11", "/ 1:19 1:26"}));
}

TEST(DuplicateMembers, CountCharactersAndNoByteOrderMark) {
  EXPECT_EQ(Duplicates("\xEF\xBB\xBF{\"ä\": 1,\r\n\t\"ä\": 2}"), Strings{"/ä 1:2 2:2"});
}

TEST(DuplicateMembers, OfAnOverwrittenValueDoNotCount) {
  EXPECT_EQ(Duplicates(R"({"A": {"x": 1, "x": 2}, "A": 3})"), Strings{"/A 1:2 1:25"});
  // Those of the value that counts do.
  EXPECT_EQ(Duplicates(R"({"A": {"x": 1, "x": 2}, "A": {"x": 1, "x": 2}})"),
            (Strings{"/A 1:2 1:25", "/A/x 1:31 1:39"}));
  EXPECT_EQ(Duplicates(R"({"A": 0, "A": [{"x": 1, "x": 2}], "A": [{"y": 1, "y": 2}]})"),
            (Strings{"/A 1:2 1:10 1:35", "/A/0/y 1:42 1:50"}));
  // So do those beside and around it.
  EXPECT_EQ(Duplicates(R"({"B": {"x": 1, "x": 2}, "A": {"x": 1, "x": 2}, "A": 3})"),
            (Strings{"/B/x 1:8 1:16", "/A 1:25 1:48"}));
  EXPECT_EQ(Duplicates(R"({"A": {"x": {"y": 1, "y": 2}, "x": 2}, "B": {"z": 1, "z": 2}, "A": 3})"),
            (Strings{"/B/z 1:46 1:54", "/A 1:2 1:63"}));
}

TEST(DuplicateMembers, OfArraysInArraysHaveTheirIndexes) {
  EXPECT_EQ(Duplicates(R"([[], [1, [], {"A": 1, "A": 2}], {"A": 1, "A": 2}])"),
            (Strings{"/1/2/A 1:15 1:23", "/2/A 1:34 1:42"}));
}

TEST(DuplicateMembers, AreFoundAsFarAsTheTextIsJson) {
  EXPECT_EQ(Duplicates(R"({"A": 1, "A": 2, "B": nul, "B": 3})"), Strings{"/A 1:2 1:10"});
  for (const char* text : {"", "\"", "\"\\", "}", "{\"A\":1}}", ":\"\":", "\"A\":\"A\":", "{\"A"}) {
    EXPECT_EQ(Duplicates(text), Strings{}) << text;
  }
}

TEST(DuplicateMembers, AreFoundAmongManyMembers) {
  std::string text = "{";
  for (int i = 0; i < 100000; ++i) text += "\"" + std::to_string(i) + "\":{\"A\":1},";
  EXPECT_EQ(Duplicates(text + "\"x\":1}"), Strings{});
  EXPECT_EQ(Duplicates(text + "\"0\":1}"), Strings{"/0 1:2 1:" + std::to_string(text.size() + 1)});
}

// --- Any text ------------------------------------------------------------------------------------

// Makes texts with few names, so that these meet, and all that a text may hold.
class RandomTexts {
 public:
  explicit RandomTexts(unsigned seed) : random_(seed) {}

  std::string Document() {
    const std::string mark = Below(4) == 0 ? "\xEF\xBB\xBF" : "";
    return mark + Blank() + (Below(4) == 0 ? Array(0) : Object(0)) + Blank();
  }

  // A byte of it is changed, taken out or put in.
  std::string BrokenDocument() {
    std::string text = Document();
    const std::size_t place = Below(text.size());
    const std::string bytes("\0\n\t\"\\{}[],:0-.ea\xFF\xC3\x80 ", 20);
    const char byte = bytes[Below(bytes.size())];
    switch (Below(3)) {
      case 0:
        text[place] = byte;
        break;
      case 1:
        text.erase(place, 1 + Below(3));
        break;
      default:
        text.insert(place, 1, byte);
    }
    return text;
  }

 private:
  std::size_t Below(std::size_t bound) { return random_() % bound; }

  std::string OneOf(const std::vector<const char*>& texts) { return texts[Below(texts.size())]; }

  std::string Blank() {
    std::string blank;
    while (Below(3) == 0) blank += OneOf({" ", "\t", "\n", "\r\n", "\r"});
    return blank;
  }

  std::string Name() {
    return OneOf({"\"A\"", "\"\\u0041\"", "\"B\"", "\"\"", "\"/\"", "\"~\"", "\"0\"", "\"1\"",
                  "\"ä\"", "\"🙂\"", "\"\\\"\\\\\"", "\"A/0\"", "\"~1\""});
  }

  std::string Scalar() {
    return OneOf({"true", "false", "null", "0", "-0", "12", "-1.5", "1e5", "0.1E-7", "1e-999",
                  "9223372036854775807", "\"\"", "\"A\"", "\"ä€🙂\"", "\"\\u0041\\n\\/\"",
                  "\"{}[],:\\\"\"", "\"\\\\\""});
  }

  std::string Value(std::size_t level) {
    if (level > 6 || Below(3) == 0) return Scalar();
    return Below(2) == 0 ? Array(level + 1) : Object(level + 1);
  }

  std::string Array(std::size_t level) {
    std::string text = "[" + Blank();
    for (std::size_t i = 0, size = Below(4); i < size; ++i) {
      text += (i == 0 ? "" : ",") + Blank() + Value(level) + Blank();
    }
    return text + "]";
  }

  std::string Object(std::size_t level) {
    std::string text = "{" + Blank();
    for (std::size_t i = 0, size = Below(5); i < size; ++i) {
      text += (i == 0 ? "" : ",") + Blank() + Name() + Blank() + ":" + Blank() + Value(level);
      text += Blank();
    }
    return text + "}";
  }

  std::mt19937 random_;
};

TEST(Positions, AgreeWithTheParserInRandomTexts) {
  for (unsigned seed = 0; seed < 2000 * TestFactor(); ++seed) {
    const std::string text = RandomTexts(seed).Document();
    ASSERT_EQ(PositionFault(text), "") << "seed " << seed << ": " << text;
  }
}

TEST(Positions, AgreeWithTheParserInBrokenTexts) {
  for (unsigned seed = 0; seed < 4000 * TestFactor(); ++seed) {
    const std::string text = RandomTexts(seed).BrokenDocument();
    ASSERT_EQ(PositionFault(text), "") << "seed " << seed << ": " << text;
  }
}

TEST(PositionsInMockups, AgreeWithTheParser) {
  const char* folder = std::getenv("REDFISH_MOCKUPS");
  if (folder == nullptr) GTEST_SKIP() << "REDFISH_MOCKUPS names no folder of Redfish trees";
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file() || entry.path().extension() != ".json") continue;
    ++files;
    EXPECT_EQ(PositionFault(ReadTextFile(entry.path().string())), "") << entry.path();
  }
  EXPECT_GT(files, 0U);
}

}  // namespace

}  // namespace ostrafel
