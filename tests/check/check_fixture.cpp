// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/check_fixture.h"

#include <regex>

#include "check/check.h"
#include "check/survey.h"
#include "document/json_file.h"

namespace ostrafel {

namespace {

std::string TextOf(const Place& place) {
  std::string text = place.path.empty() ? "-" : place.path;
  if (place.position.line != 0) {
    text += ":" + std::to_string(place.position.line) + ":" + std::to_string(place.position.column);
  }
  return place.pointer ? text + " " + *place.pointer : text;
}

bool IsOf(const Finding& finding, const std::string& rules) {
  return std::string(RuleOf(finding.rule).name).compare(0, rules.size(), rules) == 0;
}

}  // namespace

void CheckTest::Write(const std::string& path, const std::string& text) {
  directory.Write("tree/" + path, text);
}

void CheckTest::Include(const std::string& name, const std::string& text) {
  directory.Write("www/" + name, text);
}

Findings CheckTest::Check() {
  KeptFiles kept_files;
  Documents.kept_files = &kept_files;
  Documents.include_root = directory.path("www/");
  const std::string tree = directory.MakeFolder("tree");
  const Survey survey = SurveyTree({LoadAction::kCreate, tree, uri, file_name});
  Findings findings = CheckTree(survey);
  LocateFindings(&findings);
  Documents = {};
  const auto shorten = [&](Place* place) {
    for (const std::string& start : {tree + "/", directory.path() + "/"}) {
      if (place->path.compare(0, start.size(), start) == 0) place->path.erase(0, start.size());
    }
  };
  for (Finding& finding : findings) {
    shorten(&finding.place);
    for (Related& related : finding.related) shorten(&related.place);
  }
  return findings;
}

std::vector<std::string> CheckTest::Found(const std::string& rules) {
  std::vector<std::string> found;
  for (const Finding& finding : Check()) {
    if (!IsOf(finding, rules)) continue;
    found.push_back(std::string(RuleOf(finding.rule).name) + " " + TextOf(finding.place));
    for (const Related& related : finding.related) found.push_back("  " + TextOf(related.place));
  }
  return found;
}

std::vector<std::string> CheckTest::Pointers(const std::string& rules) {
  const std::regex position(":[0-9]+:[0-9]+");
  std::vector<std::string> found = Found(rules);
  for (std::string& line : found) line = std::regex_replace(line, position, "");
  return found;
}

std::vector<std::string> CheckTest::Sentences(const std::string& rules) {
  std::vector<std::string> sentences;
  for (const Finding& finding : Check()) {
    if (IsOf(finding, rules)) sentences.push_back(finding.message);
  }
  return sentences;
}

}  // namespace ostrafel
