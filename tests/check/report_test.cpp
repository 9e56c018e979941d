// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/report.h"

#include <gtest/gtest.h>

namespace ostrafel {

namespace {

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
