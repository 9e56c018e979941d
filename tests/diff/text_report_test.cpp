// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>

#include "diff/report_fixture.h"

namespace ostrafel {

namespace {

class TextReport : public ReportTest {
 protected:
  // The report less its last line.
  std::string Text(const Server& stored) {
    const std::string text =
        Reported(stored, [&](const DiffReport& report) { return DiffText(options, report); });
    return text.substr(0, text.rfind('\n', text.size() - 2) + 1);
  }
};

TEST_F(TextReport, ShowsTheRecordsOfAMemberSideBySide) {
  Write("index.json",
        "{\"A\": 1,\n\"ETag\": \"new\",\n\"Fans\": {\"x\": 1},\n\"More\": 1, \"O\": {}}");
  const Server stored = {{
      {"/r", Hash{{"&&Array Fans &&/r/Fans", ""},
                  {"&&Object A &&/r/A", ""},
                  {"&&Object O &&/r/O", ""},
                  {"ETag", "\"old\""},
                  {"More", "1"},
                  {"Less", "2"}}},
      {"&&/r/Fans", List{"1", "&&Object &&/r/Fans/1"}},
  }};
  EXPECT_EQ(Text(stored),
            "  hash  /r\n"
            "    tree/index.json:1: /A\n"
            "      - &&Object A &&/r/A\n"
            "      + A  1\n"
            "    tree/index.json:2: /ETag\n"
            "      - ETag  \"old\"\n"
            "      + ETag  \"new\"\n"
            "    tree/index.json:3: /Fans\n"
            "      - &&Array Fans &&/r/Fans\n"
            "      + &&Object Fans &&/r/Fans\n"
            "    tree/index.json: /Less\n"
            "      - Less  2\n"
            "- list  &&/r/Fans\n"
            "      - 0  1\n"
            "      - 1  &&Object &&/r/Fans/1\n"
            "+ hash  &&/r/Fans\n"
            "    tree/index.json:3: /Fans\n"
            "      + x  1\n");
}

TEST_F(TextReport, ShowsElementsInTheOrderOfTheLists) {
  Write("index.json", "{\"L\": [0,\n1,\n3,\n5,\n6]}");
  Server stored = Loaded();
  stored.keys["&&/r/L"] = List{"1", "2", "3", "4"};
  EXPECT_EQ(Text(stored),
            "  list  &&/r/L\n"
            "    tree/index.json:1: /L/0\n"
            "      + 0  0\n"
            "    tree/index.json:2: /L/1\n"
            "      - 1  2\n"
            "    tree/index.json:4: /L/3\n"
            "      - 3  4\n"
            "      + 3  5\n"
            "    tree/index.json:5: /L/4\n"
            "      + 4  6\n");
}

TEST_F(TextReport, ShowsKeysThatOnlyOneSideHasWithAllTheyHold) {
  Write("index.json", R"({"@odata.id": "/r", "Name": "A", "L": [1]})");
  const Server stored = {{{"/r/s", Hash{{"x", "1"}, {"y", ""}}}, {"/r/t", OtherType()}}};
  EXPECT_EQ(Text(stored),
            "+ hash  /r\n"
            "    tree/index.json:1:\n"
            "      + &&Array L &&/r/L\n"
            "      + @odata.id  \"/r\"\n"
            "      + Name  \"A\"\n"
            "+ list  &&/r/L\n"
            "    tree/index.json:1: /L\n"
            "      + 0  1\n"
            "- hash  /r/s\n"
            "      - x  1\n"
            "      - y\n"
            "- other  /r/t\n");
}

TEST_F(TextReport, ShowsWhereAnExtraKeyWouldComeFrom) {
  Write("index.json", "{\"A\": 1,\n\"O\": {}}");
  Server stored = Loaded();
  stored.keys["&&/r/O"] = Hash{{"x", "1"}};
  EXPECT_EQ(Text(stored), "- hash  &&/r/O\n    tree/index.json:2: /O\n      - x  1\n");
}

TEST_F(TextReport, ShowsTheOldAndTheNewTypeOfAKey) {
  Write("index.json", "{\"A\": 1,\n\"L\": [1]}");
  Server stored = Loaded();
  stored.keys["&&/r/L"] = OtherType();
  EXPECT_EQ(Text(stored),
            "- other  &&/r/L\n+ list  &&/r/L\n    tree/index.json:2: /L\n      + 0  1\n");
}

TEST_F(TextReport, GoesByResource) {
  Write("index.json", R"({"A": {"x": 1}})");
  Write("S/index.json", R"({"A": {"x": 1}})");
  Write("T/index.json", R"({"A": {"x": 1}})");
  const std::string text = Text({});
  std::size_t at = 0;
  for (const char* key : {"/r\n", "&&/r/A\n", "/r/S\n", "&&/r/S/A\n", "/r/T\n", "&&/r/T/A\n"}) {
    at = text.find(std::string("+ hash  ") + key, at);
    ASSERT_NE(at, std::string::npos) << key << text;
  }
}

TEST_F(TextReport, ShowsNoControlCharacters) {
  Write("a\x1B[2J\xFF/index.json", R"({"N\u001b\u202e\n": "\u001b[0m\n"})");
  const Server stored = {{{"/r/\t", Hash{{"\x1B", "\r"}}}}};
  const std::string text = Text(stored);
  for (const char letter : text) {
    const auto code = static_cast<unsigned char>(letter);
    EXPECT_TRUE(code == '\n' || (code >= 0x20 && code < 0x7F)) << text;
  }
  EXPECT_NE(text.find("- hash  /r/\\x09\n      - \\x1b  \\x0d\n"), std::string::npos) << text;
}

TEST_F(TextReport, HasColorsWhereTheyAreWanted) {
  Write("index.json", R"({"A": 1})");
  options.color = Color::kAlways;
  EXPECT_EQ(Text({{{"/r", Hash{{"A", "2"}}}}}),
            "  hash  /r\n"
            "    \033[1mtree/index.json:1:\033[0m /A\n"
            "      \033[1;31m- A  2\033[0m\n"
            "      \033[1;32m+ A  1\033[0m\n");
}

TEST_F(TextReport, OfAppliedDifferencesIsTheLastLine) {
  Write("index.json", R"({"A": 1})");
  applied = Applied{1, 2, 1};
  EXPECT_EQ(Reported({}, [&](const DiffReport& report) { return DiffText(options, report); }),
            "changed 1 key, 2 records\n");
}

}  // namespace

}  // namespace ostrafel
