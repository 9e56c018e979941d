// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What is found in published trees is what the documents say.
#include <gtest/gtest.h>
#include <jansson.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "check/rule.h"
#include "document/document.h"
#include "support/process.h"
#include "support/program.h"

namespace ostrafel {

namespace {

// Mockup -> rule -> number of findings; rules that find nothing are left out.
using Counts = std::map<std::string, std::map<std::string, int>>;

std::vector<std::string> Cells(const std::string& row) {
  std::vector<std::string> cells;
  std::istringstream stream(row.substr(1));
  for (std::string cell; std::getline(stream, cell, '|');) {
    const std::size_t start = cell.find_first_not_of(' ');
    cells.push_back(start == std::string::npos
                        ? ""
                        : cell.substr(start, cell.find_last_not_of(' ') + 1 - start));
  }
  return cells;
}

// The table of the document: a column for each mockup, a row for each rule.
Counts DocumentedCounts() {
  std::ifstream file(OSTRAFEL_SOURCE_DIR "/docs/mockups.md");
  Counts counts;
  std::vector<std::string> names;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] != '|' || line[1] == '-') continue;
    const std::vector<std::string> cells = Cells(line);
    if (names.empty()) {
      names = cells;
      for (std::size_t i = 1; i < names.size(); ++i) counts[names[i]] = {};
      continue;
    }
    for (std::size_t i = 1; i < cells.size(); ++i) {
      if (!cells[i].empty()) counts[names[i]][cells[0]] = std::stoi(cells[i]);
    }
  }
  return counts;
}

std::map<std::string, int> FoundCounts(const std::string& tree) {
  const Finished run =
      RunProgram(CommandOf(OSTRAFEL_CHECK_PROGRAM, {"--format", "json", "--select", "all", tree}));
  EXPECT_EQ(run.err, "");
  const Document output(json_loads(run.out.c_str(), 0, nullptr));
  const json_t* findings = json_object_get(output.get(), "findings");
  std::map<std::string, int> counts;
  for (std::size_t i = 0; i < json_array_size(findings); ++i) {
    ++counts[json_string_value(json_object_get(json_array_get(findings, i), "rule"))];
  }
  return counts;
}

TEST(Mockups, GiveTheDocumentedNumbersOfFindings) {
  const char* folder = std::getenv("REDFISH_MOCKUPS");
  if (folder == nullptr) GTEST_SKIP() << "REDFISH_MOCKUPS names no folder of Redfish trees";
  Counts documented = DocumentedCounts();
  ASSERT_EQ(documented.size(), 4U);
  Counts found;
  for (const auto& [name, counts] : documented) {
    const std::string tree = std::string(folder) + "/" + name;
    ASSERT_TRUE(std::filesystem::is_directory(tree)) << tree;
    found[name] = FoundCounts(tree);
  }
  EXPECT_EQ(found, documented);
}

// What README shows of one of them, less what it leaves out.
TEST(Mockups, LookAsREADMEShows) {
  const char* folder = std::getenv("REDFISH_MOCKUPS");
  if (folder == nullptr) GTEST_SKIP() << "REDFISH_MOCKUPS names no folder of Redfish trees";
  std::vector<std::string> command = {"/usr/bin/env", "-C", folder};
  for (const std::string& word : CommandOf(
           OSTRAFEL_CHECK_PROGRAM, {"--select", "store-,redfish-count", "public-rackmount1"})) {
    command.push_back(word);
  }
  const std::string printed = RunProgram(command).out;
  std::ifstream file(OSTRAFEL_SOURCE_DIR "/README.md");
  std::string line;
  while (std::getline(file, line) && line.find("$ ostrafel-check --select ") != 0) continue;
  int lines = 0;
  for (; std::getline(file, line) && line != "```"; ++lines) {
    if (line == "…") continue;
    EXPECT_NE(("\n" + printed).find("\n" + line + "\n"), std::string::npos) << line;
  }
  EXPECT_GT(lines, 5);
}

}  // namespace

}  // namespace ostrafel
