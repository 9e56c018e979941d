// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <jansson.h>

#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <memory>

#include "check/report_fixture.h"
#include "document/document.h"

namespace ostrafel {

namespace {

class SarifReports : public ReportTest {
 protected:
  // Makes the report and keeps its only run.
  void Make() {
    log_.reset(json_loads(SarifReport(options, report).c_str(), 0, nullptr));
    const json_t* runs = json_object_get(log_.get(), "runs");
    ASSERT_EQ(json_array_size(runs), 1U);
    run_ = json_array_get(runs, 0);
  }

  [[nodiscard]] const json_t* Result(std::size_t i) const {
    return json_array_get(json_object_get(run_, "results"), i);
  }

  // A value as compact JSON.
  static std::string Text(const json_t* value) {
    const std::unique_ptr<char, void (*)(void*)> text(
        json_dumps(value, JSON_COMPACT | JSON_ENCODE_ANY), std::free);
    return text ? text.get() : "none";
  }

  // That of the value at such a path of members and elements.
  static std::string Text(const json_t* value, std::initializer_list<const char*> path) {
    for (const char* step : path) {
      value = json_is_array(value) ? json_array_get(value, std::stoul(step))
                                   : json_object_get(value, step);
    }
    return Text(value);
  }

  Document log_;
  const json_t* run_ = nullptr;  // of log_
};

TEST_F(SarifReports, DescribeEveryRule) {
  Make();
  const json_t* driver = json_object_get(json_object_get(run_, "tool"), "driver");
  EXPECT_EQ(Text(driver, {"name"}), "\"ostrafel-check\"");
  const json_t* rules = json_object_get(driver, "rules");
  ASSERT_EQ(json_array_size(rules), Rules().size());
  for (std::size_t i = 0; i < Rules().size(); ++i) {
    const Rule& rule = Rules()[i];
    const json_t* told = json_array_get(rules, i);
    EXPECT_EQ(json_string_value(json_object_get(told, "id")), std::string(rule.name));
    EXPECT_EQ(Text(told, {"defaultConfiguration", "level"}),
              "\"" + std::string(NameOf(rule.level)) + "\"");
    EXPECT_EQ(Text(told, {"defaultConfiguration", "enabled"}), rule.is_on ? "true" : "false");
    const auto text_of = [&](const char* name) {
      return std::string(json_string_value(json_object_get(json_object_get(told, name), "text")));
    };
    EXPECT_EQ(text_of("help"), rule.explanation);
    EXPECT_EQ(text_of("fullDescription"), rule.explanation);
    EXPECT_EQ(text_of("shortDescription"), rule.summary);
  }
}

TEST_F(SarifReports, SayWhereAFindingIs) {
  Finding& finding = Add(RuleId::kKeyGlob, directory.path("tree/a/x.json"), {3, 14}, "odd", "/A");
  finding.related.push_back({{directory.path("www/y.json"), {}, Spot::kValue, {1, 2}}, "this"});
  Make();
  const json_t* result = Result(0);
  EXPECT_EQ(Text(result, {"ruleId"}), "\"key-glob\"");
  EXPECT_EQ(Text(result, {"ruleIndex"}), std::to_string(static_cast<int>(RuleId::kKeyGlob)));
  EXPECT_EQ(Text(result, {"level"}), "\"warning\"");
  EXPECT_EQ(Text(result, {"message"}), R"({"text":"odd"})");
  EXPECT_EQ(
      Text(result, {"locations"}),
      R"([{"physicalLocation":{"artifactLocation":{"uri":"a/x.json","uriBaseId":"STATICDATA"},)"
      R"("region":{"startLine":3,"startColumn":14}},)"
      R"("logicalLocations":[{"fullyQualifiedName":"/A"}]}])");
  EXPECT_EQ(Text(result, {"relatedLocations"}),
            R"([{"physicalLocation":{"artifactLocation":{"uri":"file://)" +
                directory.path("www/y.json") +
                R"("},"region":{"startLine":1,"startColumn":2}},"message":{"text":"this"}}])");
  EXPECT_EQ(Text(run_, {"columnKind"}), "\"unicodeCodePoints\"");
  EXPECT_EQ(Text(run_, {"invocations"}), "none");
}

TEST_F(SarifReports, PlaceAFindingOfNoFileAtTheTree) {
  Add(RuleId::kUpdateSlow, "", {}, "slow");
  Make();
  EXPECT_EQ(Text(Result(0), {"locations"}),
            R"([{"physicalLocation":{"artifactLocation":{"uri":"./","uriBaseId":"STATICDATA"}}}])");
  EXPECT_EQ(Text(Result(0), {"relatedLocations"}), "none");
}

TEST_F(SarifReports, EscapeInUrisAllThatMayBeReserved) {
  Add(RuleId::kKeyGlob, directory.path("tree/a b%:?#[\xC3\xA9\xFF~-._9"), {}, "\xFF\n");
  Make();
  EXPECT_EQ(Text(Result(0), {"locations", "0", "physicalLocation", "artifactLocation", "uri"}),
            "\"a%20b%25%3A%3F%23%5B%C3%A9%FF~-._9\"");
  EXPECT_EQ(Text(Result(0), {"message", "text"}), R"("\\xff\\x0a")");
}

TEST_F(SarifReports, HaveTheTreeAsAnAbsoluteBase) {
  const std::string uri = "\"file://" + directory.path("tree") + "/\"";
  Make();
  EXPECT_EQ(Text(run_, {"originalUriBaseIds", "STATICDATA", "uri"}), uri);
  options.static_data_path += "///";
  Make();
  EXPECT_EQ(Text(run_, {"originalUriBaseIds", "STATICDATA", "uri"}), uri);
  options.static_data_path = "./tree";
  Make();
  EXPECT_EQ(Text(run_, {"originalUriBaseIds", "STATICDATA", "uri"}),
            "\"file://" + std::filesystem::current_path().string() + "/tree/\"");
}

// Also that of a finding that has moved to another line or lies in another folder.
TEST_F(SarifReports, HaveFingerprintsThatEditsLeaveAlone) {
  const auto fingerprint = [&](std::size_t i) {
    return Text(Result(i), {"partialFingerprints", "rulePathPointer/v1"});
  };
  options.static_data_path = "tree";
  Add(RuleId::kKeyGlob, "tree/a", {3, 14}, "odd", "/A");
  Add(RuleId::kKeyGlob, "tree/a", {4, 1}, "even", "/A");
  Add(RuleId::kKeyCase, "tree/a", {3, 14}, "odd", "/A");
  Add(RuleId::kKeyGlob, "tree/b", {3, 14}, "odd", "/A");
  Add(RuleId::kKeyGlob, "tree/a", {3, 14}, "odd", "/B");
  Make();
  EXPECT_EQ(fingerprint(0), "\"86ecb526f246df0a\"");
  EXPECT_EQ(fingerprint(1), fingerprint(0));
  for (std::size_t i = 2; i < 5; ++i) EXPECT_NE(fingerprint(i), fingerprint(0)) << i;
}

TEST_F(SarifReports, TellUnusedEntriesOfTheBaselineOfTheRun) {
  report.unused_entries = {{"key-glob", "a", "/B", 7}};
  Make();
  EXPECT_EQ(Text(run_, {"results"}), "[]");
  EXPECT_EQ(Text(run_, {"invocations"}),
            R"([{"executionSuccessful":true,"toolExecutionNotifications":[{"level":"note",)"
            R"("message":{"text":"nothing is accepted by this entry: key-glob\ta\t/B"}}]}])");
}

}  // namespace

}  // namespace ostrafel
