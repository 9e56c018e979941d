// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>

#include "diff/report_fixture.h"

namespace ostrafel {

namespace {

class StatReport : public ReportTest {
 protected:
  std::string Stat(const Server& stored) { return Reported(stored, DiffStat); }
};

TEST_F(StatReport, CountsByResource) {
  Write("index.json", R"({"A": 1, "B": 2, "O": {"x": 1}, "L": [1, 2, 3]})");
  Write("S/index.json", R"({"A": 1, "B": 2})");
  Server stored = Loaded();
  stored.keys["/r"] = Hash{{"A", "0"}, {"&&Object O &&/r/O", ""}, {"C", "1"}};
  stored.keys["&&/r/L"] = List{"1", "0", "3", "4"};
  stored.keys.erase("/r/S");
  stored.keys["/r/\x1B"] = Hash{{"x", "1"}, {"y", "1"}};
  EXPECT_EQ(Stat(stored),
            "  keys  missing    extra  changed  resource\n"
            "     2        2        2        2  /r\n"
            "     1        0        2        0  /r/\\x1b\n"
            "     1        2        0        0  /r/S\n"
            "4 keys differ; records: 4 missing, 4 extra, 2 changed\n");
}

TEST_F(StatReport, CountsAllRecordsOfKeysOfAnotherType) {
  Write("index.json", R"({"L": [1, 2, 3]})");
  Server stored = Loaded();
  stored.keys["&&/r/L"] = Hash{{"x", "1"}};
  EXPECT_EQ(Stat(stored),
            "  keys  missing    extra  changed  resource\n"
            "     1        3        1        0  /r\n"
            "1 key differs; records: 3 missing, 1 extra, 0 changed\n");
}

TEST_F(StatReport, OfEqualStoresIsTheLastLine) {
  Write("index.json", R"({"A": 1, "L": [1, 2, 3]})");
  EXPECT_EQ(Stat(Loaded()), "equal: 1 file, 2 keys, 5 records\n");
}

TEST_F(StatReport, GroupsDigits) {
  Hash hash;
  for (int i = 0; i < 12345; ++i) hash[std::to_string(i)] = "1";
  Write("index.json", R"({"A": 1})");
  Server stored = Loaded();
  stored.keys["/r/x"] = hash;
  EXPECT_EQ(Stat(stored),
            "  keys  missing    extra  changed  resource\n"
            "     1        0   12,345        0  /r/x\n"
            "1 key differs; records: 0 missing, 12,345 extra, 0 changed\n");
}

TEST_F(StatReport, SaysWhatWasApplied) {
  Write("index.json", R"({"A": 1})");
  const auto summary = [&](const Applied& done) {
    applied = done;
    return Reported({}, DiffSummary);
  };
  EXPECT_EQ(summary({1, 1000, 1}), "changed 1 key, 1,000 records");
  EXPECT_EQ(summary({3, 4, 2}),
            "changed 3 keys, 4 records in 2 transactions: each resource at once, but not all of "
            "them");
}

}  // namespace

}  // namespace ostrafel
