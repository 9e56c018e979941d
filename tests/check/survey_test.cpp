// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/survey.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <variant>

#include "document/json_file.h"
#include "memory/server_copy.h"
#include "model/random_tree.h"
#include "support/temp_directory.h"
#include "support/test_factor.h"

namespace ostrafel {

namespace {

// Puts the record of a node where it would be stored.
void Store(const Outline& outline, std::size_t node, Server* server) {
  const Record record = RecordOf(outline, node);
  Stored& parent = server->keys[outline[outline[node].parent].key];
  if (record.parent == ParentKind::kList) {
    if (!std::holds_alternative<List>(parent)) parent = List();
    std::get<List>(parent).push_back(record.value);
  } else {
    std::get<Hash>(parent)[record.field] = record.value;
  }
}

class SurveyTest : public testing::Test {
 protected:
  SurveyTest() {
    Documents.kept_files = &kept_files;
    Documents.include_root = www.path("");
  }
  SurveyTest(const SurveyTest&) = delete;
  SurveyTest& operator=(const SurveyTest&) = delete;
  ~SurveyTest() override { Documents = {}; }

  Survey Look(const std::string& uri = "/redfish") {
    kept_files.clear();
    return SurveyTree({LoadAction::kCreate, tree.path(), uri, "index.json"});
  }

  KeptFiles kept_files;
  TempDirectory tree;
  TempDirectory www;
};

// What the outlines of all files say that is stored; nothing where one of them has an object that
// cannot be written, or where a key is claimed twice.
std::optional<Server> StoreOfOutlines(const Survey& survey) {
  for (const auto& [key, claims] : survey.claims) {
    if (claims.size() > 1) return std::nullopt;
  }
  Server server;
  for (std::size_t file = 0; file < survey.files.size(); ++file) {
    const std::optional<Subject> subject = ReadSubject(survey, file);
    if (!subject) return std::nullopt;
    for (std::size_t node = 1; node < subject->outline.size(); ++node) {
      if (subject->outline[node].kind == NodeKind::kBadId) return std::nullopt;
      Store(subject->outline, node, &server);
    }
  }
  return server;
}

TEST_F(SurveyTest, TheRecordsOfTheOutlinesAreWhatIsStored) {
  www.Write("a.json", R"({"A": {"x": [1, {"y": 2}]}, "B": "included"})");
  unsigned compared = 0;
  for (std::uint64_t seed = 0; seed < 300 * TestFactor(); ++seed) {
    std::mt19937_64 generator(9400000 + seed);
    model::RandomTreeOptions options;
    options.uri = seed % 4 == 0 ? "/redfish/" : "/redfish";
    options.folders = 1 + seed % 4;
    options.members = 3 + seed % 4;
    options.bulk = seed % 50 == 0 ? 2500 : 0;
    options.include_files = {"a.json"};
    const TempDirectory directory;
    model::WriteRandomTree(generator, directory.path(), options);
    kept_files.clear();
    const Survey survey =
        SurveyTree({LoadAction::kCreate, directory.path(), options.uri, "index.json"});
    if (survey.create.status != 0) continue;
    const std::optional<Server> expected = StoreOfOutlines(survey);
    if (!expected) continue;
    ++compared;
    ASSERT_EQ(Difference(Dump(survey.store), Dump(*expected)), "") << seed;
  }
  EXPECT_GT(compared, 50U);
}

}  // namespace

}  // namespace ostrafel
