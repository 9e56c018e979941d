// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "document/file_inclusion.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "base/files.h"
#include "document/document.h"
#include "support/sandbox.h"

namespace ostrafel {

namespace {

class Inclusion : public testing::Test {
 protected:
  Inclusion() { EmptyIncludeDirectory(); }
  ~Inclusion() override { EmptyIncludeDirectory(); }

  // Resolves the inclusion of a document; the result is in object, what was printed in printed.
  unsigned Resolve(const std::string& json) {
    const Document document(json_loads(json.c_str(), 0, nullptr));
    testing::internal::CaptureStderr();
    const unsigned result = ResolveFileInclusion(document.get());
    printed = testing::internal::GetCapturedStderr();
    char* text = json_dumps(document.get(), JSON_COMPACT | JSON_SORT_KEYS);
    object = text;
    std::free(text);
    return result;
  }

  std::string object;
  std::string printed;
};

TEST_F(Inclusion, WithoutTheMemberNothingChanges) {
  EXPECT_EQ(Resolve(R"({"A": {"&&File": "nested.json"}})"), 1U);
  EXPECT_EQ(object, R"({"A":{"&&File":"nested.json"}})");
  EXPECT_EQ(printed, "");
}

TEST_F(Inclusion, ReplacesTheMembersAndKeepsTheName) {
  Include("redfish/v1/a.json", R"({"x": 1, "y": {"&&File": "not followed.json"}})");
  EXPECT_EQ(Resolve(R"({"@odata.id": "/r", "Own": 1, "&&File": "redfish/v1/a.json"})"), 1U);
  EXPECT_EQ(object, R"({"&&File":"redfish/v1/a.json","x":1,"y":{"&&File":"not followed.json"}})");
  EXPECT_EQ(printed, "");
}

TEST_F(Inclusion, TheNameReplacesTheOneThatTheFileBrings) {
  Include("a.json", R"({"&&File": 5, "x": 1})");
  EXPECT_EQ(Resolve(R"({"&&File": "a.json"})"), 1U);
  EXPECT_EQ(object, R"({"&&File":"a.json","x":1})");
}

TEST_F(Inclusion, AByteOrderMarkIsSkippedThereToo) {
  Include("a.json", "\xEF\xBB\xBF{\"x\": 1}");
  EXPECT_EQ(Resolve(R"({"&&File": "a.json"})"), 1U);
  EXPECT_EQ(object, R"({"&&File":"a.json","x":1})");
}

TEST_F(Inclusion, AnAbsoluteNameIsTakenBelowTheRoot) {
  Include("etc/a.json", R"({"x": 1})");
  EXPECT_EQ(Resolve(R"({"&&File": "/etc/a.json"})"), 1U);
  EXPECT_EQ(object, R"({"&&File":"/etc/a.json","x":1})");
}

TEST_F(Inclusion, ANameWithoutAPointIsParsedAsJson) {
  Include("plain", R"({"x": 1})");
  EXPECT_EQ(Resolve(R"({"&&File": "plain"})"), 1U);
  EXPECT_EQ(object, R"({"&&File":"plain","x":1})");
}

TEST_F(Inclusion, AnXmlFileIsAcceptedAsItIs) {
  Include("a.xml", "<x/>");
  EXPECT_EQ(Resolve(R"({"&&File": "a.xml", "Own": 1})"), 1U);
  EXPECT_EQ(object, R"({"&&File":"a.xml","Own":1})");
  EXPECT_EQ(printed, "");
}

TEST_F(Inclusion, TheExtensionIsWhatFollowsTheLastPoint) {
  Include("a.v1.xml", "<x/>");
  EXPECT_EQ(Resolve(R"({"&&File": "a.v1.xml"})"), 1U);
  EXPECT_EQ(object, R"({"&&File":"a.v1.xml"})");
  Include("a.xml.json", R"({"x": 1})");
  EXPECT_EQ(Resolve(R"({"&&File": "a.xml.json"})"), 1U);
  EXPECT_EQ(object, R"({"&&File":"a.xml.json","x":1})");
  Include("xml", "<x/>");
  EXPECT_EQ(Resolve(R"({"&&File": "xml"})"), 0U);
  EXPECT_EQ(printed,
            "error: on line 1: '[' or '{' expected near '<'\n"
            "Unqualified JSON file - /usr/local/nginx/www/xml\n");
}

TEST_F(Inclusion, TheExtensionXmlIsTakenToTheLetter) {
  Include("a.XML", "<x/>");
  EXPECT_EQ(Resolve(R"({"&&File": "a.XML", "Own": 1})"), 0U);
  EXPECT_EQ(printed,
            "error: on line 1: '[' or '{' expected near '<'\n"
            "Unqualified JSON file - /usr/local/nginx/www/a.XML\n");
  EXPECT_EQ(object, R"({"&&File":"a.XML","Own":1})");
}

TEST_F(Inclusion, AMissingXmlFileIsMissing) {
  EXPECT_EQ(Resolve(R"({"&&File": "a.xml"})"), 0U);
  EXPECT_EQ(printed, "File not found.\n");
}

TEST_F(Inclusion, ANameThatIsNoStringIsRefused) {
  for (const char* value : {"1", "null", "{}", "[\"a.json\"]", "true"}) {
    EXPECT_EQ(Resolve(R"({"&&File": )" + std::string(value) + "}"), 0U) << value;
    EXPECT_EQ(printed, "The value of &&File is not string type.\n") << value;
  }
}

TEST_F(Inclusion, TwoPointsAnywhereInTheNameAreRefused) {
  Include("a..b.json", R"({"x": 1})");
  for (const char* name : {"../a.json", "a/../b.json", "a..b.json", ".."}) {
    EXPECT_EQ(Resolve(R"({"&&File": ")" + std::string(name) + "\"}"), 0U) << name;
    EXPECT_EQ(printed, "Notation '..' is unacceptable.\n") << name;
  }
}

TEST_F(Inclusion, AMissingFileIsReported) {
  EXPECT_EQ(Resolve(R"({"&&File": "none.json"})"), 0U);
  EXPECT_EQ(printed, "File not found.\n");
}

TEST_F(Inclusion, AnArrayIsUnqualified) {
  Include("a.json", "[1, 2, 3]");
  EXPECT_EQ(Resolve(R"({"&&File": "a.json"})"), 0U);
  EXPECT_EQ(printed, "Unqualified JSON file - /usr/local/nginx/www/a.json\n");
}

TEST_F(Inclusion, InvalidJsonIsUnqualified) {
  Include("a.json", "{\"x\": }");
  EXPECT_EQ(Resolve(R"({"&&File": "a.json"})"), 0U);
  EXPECT_EQ(printed,
            "error: on line 1: unexpected token near '}'\n"
            "Unqualified JSON file - /usr/local/nginx/www/a.json\n");
}

TEST_F(Inclusion, AnEmptyNameIsTheIncludeDirectoryItself) {
  EXPECT_EQ(Resolve(R"({"&&File": ""})"), 0U);
  EXPECT_EQ(printed,
            "error: Failed to read file.\n"
            "error: on line 1: '[' or '{' expected near end of file\n"
            "Unqualified JSON file - /usr/local/nginx/www/\n");
}

TEST_F(Inclusion, FilesExistWhenTheyCanBeOpened) {
  Include("a.json", "");
  EXPECT_TRUE(FileExists("/usr/local/nginx/www/a.json"));
  EXPECT_TRUE(FileExists(kIncludeDirectory));
  EXPECT_FALSE(FileExists("/usr/local/nginx/www/b.json"));
}

}  // namespace

}  // namespace ostrafel
