// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A report made by hand, of a tree in a folder of the test's own.
#ifndef OSTRAFEL_TESTS_CHECK_REPORT_FIXTURE_H_
#define OSTRAFEL_TESTS_CHECK_REPORT_FIXTURE_H_

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "check/report.h"
#include "support/temp_directory.h"

namespace ostrafel {

class ReportTest : public ::testing::Test {
 protected:
  ReportTest() { options.static_data_path = directory.path("tree"); }

  // Adds a finding in a file, by its path as it is opened.
  Finding& Add(RuleId rule, const std::string& path, const Position& position,
               const std::string& message, const std::optional<std::string>& pointer = {}) {
    Finding finding = {};
    finding.rule = rule;
    finding.place = {path, pointer, Spot::kValue, position};
    finding.message = message;
    report.findings.push_back(finding);
    return report.findings.back();
  }

  // The text with the path of the test's folder taken out.
  [[nodiscard]] std::string Shortened(std::string text) const {
    const std::string start = directory.path() + "/";
    for (std::size_t at = 0; (at = text.find(start, at)) != std::string::npos;) {
      text.erase(at, start.size());
    }
    return text;
  }

  TempDirectory directory;
  CheckOptions options;
  Report report;
};

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_CHECK_REPORT_FIXTURE_H_
