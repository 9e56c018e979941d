// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/json_text.h"

#include <gtest/gtest.h>
#include <jansson.h>

#include <string>

#include "document/document.h"

namespace ostrafel {

namespace {

std::string JsonString(std::string_view string) {
  std::string text;
  AppendJsonString(string, &text);
  return text;
}

TEST(JsonText, WritesPlainStringsAsTheyAre) {
  EXPECT_EQ(JsonString(""), R"("")");
  EXPECT_EQ(JsonString("/redfish/v1 ~!"), R"("/redfish/v1 ~!")");
  EXPECT_EQ(JsonString("caf\xC3\xA9 \xF0\x9F\x98\x80"), "\"caf\xC3\xA9 \xF0\x9F\x98\x80\"");
}

TEST(JsonText, EscapesWhatJsonAsksFor) {
  EXPECT_EQ(JsonString(R"(a"b\c)"), R"("a\"b\\c")");
  EXPECT_EQ(JsonString("a\nb\tc\x1F\x7F"), R"("a\nb\u0009c\u001f\u007f")");
  EXPECT_EQ(JsonString(std::string("a\0b", 3)), R"("a\u0000b")");
}

TEST(JsonText, KeepsBytesThatAreNoUtf8AsSurrogates) {
  EXPECT_EQ(JsonString("\x80"
                       "a\xFF"),
            R"("\udc80a\udcff")");
  EXPECT_EQ(JsonString("\xE2\x82z"), R"("\udce2\udc82z")");
  EXPECT_EQ(JsonString("\xED\xB2\x80"), R"("\udced\udcb2\udc80")");  // a surrogate by itself
}

TEST(JsonText, ReadsBackAsTheSameString) {
  std::string all;
  for (char c = 1; c < 0x7F; ++c) all += c;
  all += "\x7F\xC2\x80\xDF\xBF\xE2\x80\xA8\xEF\xBB\xBF\xF4\x8F\xBF\xBF";
  const Document read(json_loads(JsonString(all).c_str(), JSON_DECODE_ANY, nullptr));
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(json_string_value(read.get()), all);
}

TEST(JsonWriter, WritesAllKindsOfValuesIndented) {
  JsonWriter json;
  json.OpenObject();
  json.Member("a", "\"");
  json.Name("b");
  json.OpenArray();
  json.Number(7);
  json.Null();
  json.Bool(true);
  json.OpenObject();
  json.Close();
  json.Close();
  json.Name("c");
  json.OpenArray();
  json.Close();
  json.Name("d");
  json.Bool(false);
  json.Close();
  EXPECT_EQ(json.Finish(), R"({
  "a": "\"",
  "b": [
    7,
    null,
    true,
    {}
  ],
  "c": [],
  "d": false
}
)");
}

TEST(JsonWriter, IndentsByAsManyBlanksAsItIsTold) {
  for (const std::size_t indent : {std::size_t{0}, std::size_t{1}, std::size_t{4}}) {
    JsonWriter json(indent);
    json.OpenObject();
    json.Name("a");
    json.OpenArray();
    json.Number(1);
    json.Close();
    json.Close();
    const std::string blanks(indent, ' ');
    EXPECT_EQ(json.Finish(),
              "{\n" + blanks + "\"a\": [\n" + blanks + blanks + "1\n" + blanks + "]\n}\n");
  }
}

TEST(JsonWriter, TakesValuesThatAreThereAlready) {
  JsonWriter json;
  json.OpenObject();
  json.Name("a");
  json.Literal("5.0");
  json.Name("b");
  json.OpenArray();
  json.Literal("-0.0");
  json.Literal("null");
  json.Close();
  json.Close();
  EXPECT_EQ(json.Finish(), "{\n  \"a\": 5.0,\n  \"b\": [\n    -0.0,\n    null\n  ]\n}\n");
}

}  // namespace

}  // namespace ostrafel
