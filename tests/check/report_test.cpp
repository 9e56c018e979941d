// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/report.h"

#include <gtest/gtest.h>

namespace ostrafel {

namespace {

CheckOptions OptionsOf(const std::string& static_data_path) {
  CheckOptions options;
  options.static_data_path = static_data_path;
  return options;
}

TEST(RelativePaths, LackWhatWasTyped) {
  EXPECT_EQ(RelativePath(OptionsOf("tree"), "tree/Chassis/index.json"), "Chassis/index.json");
  EXPECT_EQ(RelativePath(OptionsOf("tree/"), "tree//Chassis/index.json"), "Chassis/index.json");
  EXPECT_EQ(RelativePath(OptionsOf("tree///"), "tree////index.json"), "index.json");
  EXPECT_EQ(RelativePath(OptionsOf("./a/../tree"), "./a/../tree/index.json"), "index.json");
  EXPECT_EQ(RelativePath(OptionsOf("/"), "//index.json"), "index.json");
}

TEST(RelativePaths, AreThePathsThemselvesElsewhere) {
  EXPECT_EQ(RelativePath(OptionsOf("tree"), "trees/index.json"), "trees/index.json");
  EXPECT_EQ(RelativePath(OptionsOf("tree"), "tree"), "tree");
  EXPECT_EQ(RelativePath(OptionsOf("tree/"), "tree/"), "tree/");
  EXPECT_EQ(RelativePath(OptionsOf("tree/index.json"), "tree/index.json"), "tree/index.json");
  EXPECT_EQ(RelativePath(OptionsOf("tree"), "/www/x.json"), "/www/x.json");
  EXPECT_EQ(RelativePath(OptionsOf("tree"), ""), "");
}

TEST(ShownPaths, AreThoseThatAnEditorOpens) {
  EXPECT_EQ(ShownPath(OptionsOf("tree"), "tree/a/index.json"), "tree/a/index.json");
  EXPECT_EQ(ShownPath(OptionsOf("tree//"), "tree///a/index.json"), "tree/a/index.json");
  EXPECT_EQ(ShownPath(OptionsOf("/"), "//a/index.json"), "/a/index.json");
  EXPECT_EQ(ShownPath(OptionsOf("tree/"), "/www//x.json"), "/www//x.json");
  EXPECT_EQ(ShownPath(OptionsOf("tree/"), ""), "tree/");
}

TEST(SummaryLines, CountEverything) {
  Report report;
  report.files = 271;
  report.keys = 1;
  report.records = 1234567;
  report.create.status = 255;
  for (const RuleId rule : {RuleId::kLoadSyntax, RuleId::kKeyGlob, RuleId::kKeyCase}) {
    report.findings.push_back({rule, {}, {}, ""});
  }
  EXPECT_EQ(SummaryLine(report),
            "271 files, 1 key, 1,234,567 records: 1 error, 2 warnings, 0 notes; create ends with "
            "status 255, update with 0");
  EXPECT_EQ(SummaryLine({}).substr(0, 26), "0 files, 0 keys, 0 records");
  report.records = 1000;
  EXPECT_NE(SummaryLine(report).find(" 1,000 records"), std::string::npos);
  report.records = 999;
  EXPECT_NE(SummaryLine(report).find(" 999 records"), std::string::npos);
}

TEST(StoreJson, HasHashesAndListsInTheOrderOfBytes) {
  Server server;
  server.keys["/b"] = List{"\"x\"", "1"};
  server.keys["/a\xFF"] = Hash{{"b", "\"\\\""}, {"B", "2"}, {"\xC3\xA9", "3"}};
  server.keys["/B"] = Hash{{"", ""}};
  server.keys["/other"] = OtherType{};
  EXPECT_EQ(StoreJson(server), R"({
"/B": {"hash": {"": ""}},
"/a\udcff": {"hash": {"B": "2", "b": "\"\\\"", "é": "3"}},
"/b": {"list": ["\"x\"", "1"]}
}
)");
}

TEST(StoreJson, IsAnObjectWhenNothingIsStored) {
  Server server;
  EXPECT_EQ(StoreJson(server), "{}\n");
  server.keys["/other"] = OtherType{};
  EXPECT_EQ(StoreJson(server), "{}\n");
}

}  // namespace

}  // namespace ostrafel
