// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "document/file_inclusion.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "document/document.h"
#include "support/sandbox.h"

namespace ostrafel {

namespace {

class FileInclusion : public testing::Test {
 protected:
  FileInclusion() { EmptyIncludeDirectory(); }
  ~FileInclusion() override { EmptyIncludeDirectory(); }

  // Resolves the inclusion of a document; the result is in object, what was printed in printed.
  bool Resolve(const std::string& json) {
    const Document document(json_loads(json.c_str(), 0, nullptr));
    testing::internal::CaptureStderr();
    const Inclusion inclusion = ResolveFileInclusion(document.get());
    PrintInclusionMessages(inclusion);
    printed = testing::internal::GetCapturedStderr();
    char* text = json_dumps(document.get(), JSON_COMPACT | JSON_SORT_KEYS);
    object = text;
    std::free(text);
    return inclusion.end == InclusionEnd::kDone;
  }

  std::string object;
  std::string printed;
};

TEST_F(FileInclusion, WithoutTheMemberNothingChanges) {
  EXPECT_TRUE(Resolve(R"({"A": {"&&File": "nested.json"}})"));
  EXPECT_EQ(object, R"({"A":{"&&File":"nested.json"}})");
  EXPECT_EQ(printed, "");
}

TEST_F(FileInclusion, ReplacesTheMembersAndKeepsTheName) {
  Include("redfish/v1/a.json", R"({"x": 1, "y": {"&&File": "not followed.json"}})");
  EXPECT_TRUE(Resolve(R"({"@odata.id": "/r", "Own": 1, "&&File": "redfish/v1/a.json"})"));
  EXPECT_EQ(object, R"({"&&File":"redfish/v1/a.json","x":1,"y":{"&&File":"not followed.json"}})");
  EXPECT_EQ(printed, "");
}

TEST_F(FileInclusion, TheNameReplacesTheOneThatTheFileBrings) {
  Include("a.json", R"({"&&File": 5, "x": 1})");
  EXPECT_TRUE(Resolve(R"({"&&File": "a.json"})"));
  EXPECT_EQ(object, R"({"&&File":"a.json","x":1})");
}

TEST_F(FileInclusion, AByteOrderMarkIsSkippedThereToo) {
  Include("a.json", "\xEF\xBB\xBF{\"x\": 1}");
  EXPECT_TRUE(Resolve(R"({"&&File": "a.json"})"));
  EXPECT_EQ(object, R"({"&&File":"a.json","x":1})");
}

TEST_F(FileInclusion, AnAbsoluteNameIsTakenBelowTheRoot) {
  Include("etc/a.json", R"({"x": 1})");
  EXPECT_TRUE(Resolve(R"({"&&File": "/etc/a.json"})"));
  EXPECT_EQ(object, R"({"&&File":"/etc/a.json","x":1})");
}

TEST_F(FileInclusion, ANameWithoutAPointIsParsedAsJson) {
  Include("plain", R"({"x": 1})");
  EXPECT_TRUE(Resolve(R"({"&&File": "plain"})"));
  EXPECT_EQ(object, R"({"&&File":"plain","x":1})");
}

TEST_F(FileInclusion, AnXmlFileIsAcceptedAsItIs) {
  Include("a.xml", "<x/>");
  EXPECT_TRUE(Resolve(R"({"&&File": "a.xml", "Own": 1})"));
  EXPECT_EQ(object, R"({"&&File":"a.xml","Own":1})");
  EXPECT_EQ(printed, "");
}

TEST_F(FileInclusion, TheExtensionIsWhatFollowsTheLastPoint) {
  Include("a.v1.xml", "<x/>");
  EXPECT_TRUE(Resolve(R"({"&&File": "a.v1.xml"})"));
  EXPECT_EQ(object, R"({"&&File":"a.v1.xml"})");
  Include("a.xml.json", R"({"x": 1})");
  EXPECT_TRUE(Resolve(R"({"&&File": "a.xml.json"})"));
  EXPECT_EQ(object, R"({"&&File":"a.xml.json","x":1})");
  Include("xml", "<x/>");
  EXPECT_FALSE(Resolve(R"({"&&File": "xml"})"));
  EXPECT_EQ(printed,
            "error: on line 1: '[' or '{' expected near '<'\n"
            "Unqualified JSON file - /usr/local/nginx/www/xml\n");
}

TEST_F(FileInclusion, TheExtensionXmlIsTakenToTheLetter) {
  Include("a.XML", "<x/>");
  EXPECT_FALSE(Resolve(R"({"&&File": "a.XML", "Own": 1})"));
  EXPECT_EQ(printed,
            "error: on line 1: '[' or '{' expected near '<'\n"
            "Unqualified JSON file - /usr/local/nginx/www/a.XML\n");
  EXPECT_EQ(object, R"({"&&File":"a.XML","Own":1})");
}

TEST_F(FileInclusion, AMissingXmlFileIsMissing) {
  EXPECT_FALSE(Resolve(R"({"&&File": "a.xml"})"));
  EXPECT_EQ(printed, "File not found.\n");
}

TEST_F(FileInclusion, ANameThatIsNoStringIsRefused) {
  for (const char* value : {"1", "null", "{}", "[\"a.json\"]", "true"}) {
    EXPECT_FALSE(Resolve(R"({"&&File": )" + std::string(value) + "}")) << value;
    EXPECT_EQ(printed, "The value of &&File is not string type.\n") << value;
  }
}

TEST_F(FileInclusion, TwoPointsAnywhereInTheNameAreRefused) {
  Include("a..b.json", R"({"x": 1})");
  for (const char* name : {"../a.json", "a/../b.json", "a..b.json", ".."}) {
    EXPECT_FALSE(Resolve(R"({"&&File": ")" + std::string(name) + "\"}")) << name;
    EXPECT_EQ(printed, "Notation '..' is unacceptable.\n") << name;
  }
}

TEST_F(FileInclusion, AMissingFileIsReported) {
  EXPECT_FALSE(Resolve(R"({"&&File": "none.json"})"));
  EXPECT_EQ(printed, "File not found.\n");
}

TEST_F(FileInclusion, AnArrayIsUnqualified) {
  Include("a.json", "[1, 2, 3]");
  EXPECT_FALSE(Resolve(R"({"&&File": "a.json"})"));
  EXPECT_EQ(printed, "Unqualified JSON file - /usr/local/nginx/www/a.json\n");
}

TEST_F(FileInclusion, InvalidJsonIsUnqualified) {
  Include("a.json", "{\"x\": }");
  EXPECT_FALSE(Resolve(R"({"&&File": "a.json"})"));
  EXPECT_EQ(printed,
            "error: on line 1: unexpected token near '}'\n"
            "Unqualified JSON file - /usr/local/nginx/www/a.json\n");
}

TEST_F(FileInclusion, AnEmptyNameIsTheIncludeDirectoryItself) {
  EXPECT_FALSE(Resolve(R"({"&&File": ""})"));
  EXPECT_EQ(printed,
            "error: Failed to read file.\n"
            "error: on line 1: '[' or '{' expected near end of file\n"
            "Unqualified JSON file - /usr/local/nginx/www/\n");
}

TEST_F(FileInclusion, FilesExistWhenTheyCanBeOpened) {
  Include("a.json", "");
  EXPECT_TRUE(FileExists("/usr/local/nginx/www/a.json"));
  EXPECT_TRUE(FileExists(kIncludeDirectory));
  EXPECT_FALSE(FileExists("/usr/local/nginx/www/b.json"));
}

}  // namespace

}  // namespace ostrafel
