// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <jansson.h>

#include "check/report_fixture.h"
#include "document/document.h"

namespace ostrafel {

namespace {

class JsonReports : public ReportTest {
 protected:
  JsonReports() { options.static_data_path = "tree/"; }
};

TEST_F(JsonReports, HaveTheSummaryWhenNothingIsFound) {
  report.files = 1;
  report.keys = 2;
  report.records = 3456;
  report.create = {255, "no\n"};
  EXPECT_EQ(JsonReport(options, report), R"({
  "version": 1,
  "summary": {
    "files": 1,
    "keys": 2,
    "records": 3456,
    "errors": 0,
    "warnings": 0,
    "notes": 0,
    "create_status": 255,
    "create_messages": "no\n",
    "update_status": 0,
    "update_messages": "",
    "unused_baseline": []
  },
  "findings": []
}
)");
}

TEST_F(JsonReports, HaveAllThatIsKnownOfAFindingAndNullForTheRest) {
  Add(RuleId::kUpdateSlow, "", {}, "slow");
  Finding& finding = Add(RuleId::kKeyClaimedTwice, "tree//a\xFF/x", {3, 14}, "twice", "/A");
  finding.key = "/k\xFF";
  finding.related.push_back({{"/www/x", "", Spot::kValue, {1, 2}}, "first"});
  report.unused_entries = {{"key-glob", "a", "/B", 7}, {"key-glob", "", "", 8}};
  const std::string text = JsonReport(options, report);
  EXPECT_EQ(text.substr(text.find("    \"errors\"")), R"(    "errors": 1,
    "warnings": 0,
    "notes": 1,
    "create_status": 0,
    "create_messages": "",
    "update_status": 0,
    "update_messages": "",
    "unused_baseline": [
      {
        "rule": "key-glob",
        "file": "a",
        "pointer": "/B"
      },
      {
        "rule": "key-glob",
        "file": null,
        "pointer": ""
      }
    ]
  },
  "findings": [
    {
      "rule": "update-slow",
      "level": "note",
      "file": null,
      "line": null,
      "column": null,
      "pointer": null,
      "key": null,
      "message": "slow",
      "related": []
    },
    {
      "rule": "key-claimed-twice",
      "level": "error",
      "file": "a\udcff/x",
      "line": 3,
      "column": 14,
      "pointer": "/A",
      "key": "/k\udcff",
      "message": "twice",
      "related": [
        {
          "file": "/www/x",
          "line": 1,
          "column": 2,
          "pointer": "",
          "message": "first"
        }
      ]
    }
  ]
}
)");
}

TEST_F(JsonReports, AreSortedByWhatTheyHaveForAFile) {
  options.static_data_path = "../tree";
  Add(RuleId::kKeyGlob, "", {}, "0");
  Add(RuleId::kKeyGlob, "../tree/a", {1, 1}, "2");
  Add(RuleId::kKeyGlob, "../tree/a", {2, 1}, "3");
  Add(RuleId::kKeyGlob, "../tree/b", {1, 1}, "4");
  Add(RuleId::kKeyGlob, "/www/x", {1, 1}, "1");
  const Document json(json_loads(JsonReport(options, report).c_str(), 0, nullptr));
  const json_t* findings = json_object_get(json.get(), "findings");
  ASSERT_EQ(json_array_size(findings), 5U);
  for (std::size_t i = 0; i < 5; ++i) {
    const json_t* message = json_object_get(json_array_get(findings, i), "message");
    EXPECT_EQ(json_string_value(message), std::to_string(i));
  }
}

}  // namespace

}  // namespace ostrafel
