// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "diff/report_fixture.h"
#include "document/document.h"

namespace ostrafel {

namespace {

class JsonReport : public ReportTest {
 protected:
  std::string Json(const Server& stored) {
    return Reported(stored, [&](const DiffReport& report) { return DiffJson(options, report); });
  }
};

TEST_F(JsonReport, OfEqualStoresHasNoDifferences) {
  Write("index.json", R"({"A": 1})");
  EXPECT_EQ(Json(Loaded()), "{\n  \"version\": 1,\n  \"equal\": true,\n  \"differences\": []\n}\n");
}

TEST_F(JsonReport, HasAMemberForEverythingAndNullForWhatDoesNotApply) {
  Write("index.json", "{\"A\": 1,\n\"L\": [1]}");
  const Document report(
      json_loads(Json({{{"&&/r/L", List{"2", "1"}}, {"/r/x", OtherType()}}}).c_str(), 0, nullptr));
  const Document expected(json_loads(R"({"version": 1, "equal": false, "differences": [
      {"change": "extra", "key": "&&/r/L", "type": "list", "record": 0, "stored": "2",
       "wanted": null, "file": "index.json", "line": 2, "pointer": "/L/0"},
      {"change": "missing", "key": "/r", "type": "hash", "record": null, "stored": null,
       "wanted": null, "file": "index.json", "line": 1, "pointer": ""},
      {"change": "extra", "key": "/r/x", "type": null, "record": null, "stored": null,
       "wanted": null, "file": null, "line": null, "pointer": null}]})",
                                     0, nullptr));
  EXPECT_TRUE(json_equal(report.get(), expected.get())) << Json({});
}

TEST_F(JsonReport, SaysWhatKeysOfAnotherTypeHold) {
  Write("index.json", "{\"A\": 1,\n\"L\": [1]}");
  Server stored = Loaded();
  stored.keys["&&/r/L"] = Hash{{"x", "1"}};
  const Document report(json_loads(Json(stored).c_str(), 0, nullptr));
  const Document expected(json_loads(R"({"version": 1, "equal": false, "differences": [
      {"change": "changed", "key": "&&/r/L", "type": "list", "record": null, "stored": "hash",
       "wanted": "list", "file": "index.json", "line": 2, "pointer": "/L"}]})",
                                     0, nullptr));
  EXPECT_TRUE(json_equal(report.get(), expected.get())) << Json(stored);
}

TEST_F(JsonReport, IsSortedByKeyAndRecord) {
  Write("index.json", R"({"a": 1, "B": 1, "L": [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11]})");
  Server stored = Loaded();
  stored.keys["/r"] = Hash{{"~", "1"}, {"a", "2"}};
  stored.keys["&&/r/L"] = List{"x", "1", "2", "y", "z", "3", "4", "5", "6", "7", "8", "9", "10"};
  const Document report(json_loads(Json(stored).c_str(), 0, nullptr));
  std::vector<std::string> records;
  std::size_t index = 0;
  json_t* difference = nullptr;
  json_array_foreach(json_object_get(report.get(), "differences"), index, difference) {
    const json_t* record = json_object_get(difference, "record");
    records.push_back(json_string_value(json_object_get(difference, "change")) + std::string(" ") +
                      (json_is_string(record) ? json_string_value(record)
                                              : std::to_string(json_integer_value(record))));
  }
  EXPECT_EQ(records, (std::vector<std::string>{"changed 0", "extra 3", "extra 4", "missing 11",
                                               "missing &&Array L &&/r/L", "missing B", "changed a",
                                               "extra ~"}))
      << Json(stored);
}

TEST_F(JsonReport, HasBytesThatAreNoUtf8AsLoneSurrogates) {
  Write("\xFF/index.json", R"({"A": 1})");
  const std::string text = Json({{{"/r/\xFF", Hash{{"A", "\xC3"}, {"\xE2\x82", "\n"}}}}});
  for (const char* part :
       {R"("key": "/r/\udcff")", R"("stored": "\udcc3")", R"("record": "\udce2\udc82")",
        R"("file": "\udcff/index.json")", R"("stored": "\n")"}) {
    EXPECT_NE(text.find(part), std::string::npos) << part << text;
  }
}

TEST_F(JsonReport, SaysWhatWasApplied) {
  Write("index.json", R"({"A": 1})");
  applied = Applied{1, 2, 3};
  const Document report(json_loads(Json({}).c_str(), 0, nullptr));
  const Document expected(
      json_loads(R"({"keys": 1, "records": 2, "transactions": 3})", 0, nullptr));
  EXPECT_TRUE(json_equal(json_object_get(report.get(), "applied"), expected.get())) << Json({});
}

}  // namespace

}  // namespace ostrafel
