// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "document/json_file.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/temp_directory.h"

namespace ostrafel {

namespace {

class LoadJson : public testing::Test {
 protected:
  // Loads a file with this content and keeps what was printed in printed.
  Document Load(const std::string& content) {
    const std::string path = directory.Write("file.json", content);
    testing::internal::CaptureStderr();
    JsonFile file = LoadJsonFile(path.c_str());
    PrintJsonFileMessages(file);
    printed = testing::internal::GetCapturedStderr();
    return std::move(file.root);
  }

  TempDirectory directory;
  std::string printed;
};

TEST_F(LoadJson, ReturnsTheObjectOfAFile) {
  const Document document = Load(R"({"Name": "A"})");
  ASSERT_TRUE(json_is_object(document.get()));
  EXPECT_STREQ(json_string_value(json_object_get(document.get(), "Name")), "A");
  EXPECT_EQ(printed, "");
}

TEST_F(LoadJson, SkipsAByteOrderMark) {
  const Document document = Load("\xEF\xBB\xBF{\"a\": 1}");
  EXPECT_EQ(json_integer_value(json_object_get(document.get(), "a")), 1);
  EXPECT_EQ(printed, "");
}

TEST_F(LoadJson, ReadsAFileFromItsStartWhenOnlyPartOfTheMarkIsThere) {
  EXPECT_EQ(Load("\xEF\xBB{}"), nullptr);
  EXPECT_EQ(printed.substr(0, 17), "error: on line 1:");
}

TEST_F(LoadJson, AByteOrderMarkAloneIsAnEmptyDocument) {
  EXPECT_EQ(Load("\xEF\xBB\xBF"), nullptr);
  EXPECT_EQ(printed, "error: on line 1: '[' or '{' expected near end of file\n");
}

TEST_F(LoadJson, AnEmptyFileIsReportedAndThenRefusedByTheParser) {
  EXPECT_EQ(Load(""), nullptr);
  EXPECT_EQ(printed,
            "error: Failed to read file.\n"
            "error: on line 1: '[' or '{' expected near end of file\n");
}

TEST_F(LoadJson, AnEmptyObjectOfTwoBytesIsReportedAndLoads) {
  const Document document = Load("{}");
  EXPECT_TRUE(json_is_object(document.get()));
  EXPECT_EQ(printed, "error: Failed to read file.\n");
}

TEST_F(LoadJson, ReturnsAnArrayForItsCallerToRefuse) {
  EXPECT_TRUE(json_is_array(Load("[1, 2]").get()));
  EXPECT_EQ(printed, "");
}

TEST_F(LoadJson, AMissingFileIsNotReported) {
  testing::internal::CaptureStderr();
  PrintJsonFileMessages(LoadJsonFile(directory.path("none.json").c_str()));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(LoadJson, ReadsAFileOfManyBuffersBehindAByteOrderMark) {
  const std::string text(200000, 'x');
  const Document document = Load("\xEF\xBB\xBF{\"a\": \"" + text + "\", \"b\": 1}");
  EXPECT_EQ(json_string_value(json_object_get(document.get(), "a")), text);
  EXPECT_EQ(json_integer_value(json_object_get(document.get(), "b")), 1);
  EXPECT_EQ(printed, "");
}

TEST_F(LoadJson, NothingOfABrokenFileGetsIntoTheNext) {
  EXPECT_EQ(Load(std::string(100000, ' ') + "{\"a\": "), nullptr);
  const Document document = Load("{\"b\": 1}");
  EXPECT_EQ(json_object_size(document.get()), 1U);
  EXPECT_EQ(json_integer_value(json_object_get(document.get(), "b")), 1);
  EXPECT_EQ(printed, "");
}

TEST_F(LoadJson, ADirectoryOpensAndCannotBeRead) {
  testing::internal::CaptureStderr();
  PrintJsonFileMessages(LoadJsonFile(directory.path().c_str()));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "error: Failed to read file.\n"
            "error: on line 1: '[' or '{' expected near end of file\n");
}

TEST_F(LoadJson, NamesTheLineOfAnError) {
  const struct {
    const char* content;
    const char* message;
  } cases[] = {
      {"{\"a\": 1,\n \"b\" 2}", "error: on line 2: ':' expected near '2'\n"},
      {"{\"a\": 1} x", "error: on line 1: end of file expected near 'x'\n"},
      {"1234", "error: on line 1: '[' or '{' expected near '1234'\n"},
      {"\"text\"", "error: on line 1: '[' or '{' expected near '\"text\"'\n"},
      {"{\"a\": \"\\u0000\"}",
       "error: on line 1: \\u0000 is not allowed without JSON_ALLOW_NUL near '\"\\u0000\"'\n"},
      {"{\"a\": 92233720368547758080}",
       "error: on line 1: too big integer near '92233720368547758080'\n"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Load(c.content), nullptr) << c.content;
    EXPECT_EQ(printed, c.message) << c.content;
  }
}

}  // namespace

}  // namespace ostrafel
