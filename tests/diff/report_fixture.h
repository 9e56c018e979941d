// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Reports of what differs between a tree and a store, as the program makes them.
#ifndef OSTRAFEL_TESTS_DIFF_REPORT_FIXTURE_H_
#define OSTRAFEL_TESTS_DIFF_REPORT_FIXTURE_H_

#include <string>

#include "diff/diff_fixture.h"
#include "diff/report.h"

namespace ostrafel {

class ReportTest : public DiffTest {
 protected:
  ReportTest() {
    options.static_data_path = directory.path("tree");
    options.color = Color::kNever;
  }

  // What write says of the store beside the tree, with "tree" for the path of the tree.
  template <typename Write>
  std::string Reported(const Server& stored, const Write& write) {
    const Server wanted = Loaded();
    const Differences differences = Compare(stored);
    std::string text = write(DiffReport{stored, wanted, differences, 1, applied});
    const std::string start = directory.path() + "/";
    for (std::size_t at = 0; (at = text.find(start, at)) != std::string::npos;) {
      text.erase(at, start.size());
    }
    return text;
  }

  DiffOptions options;
  std::optional<Applied> applied;
};

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_DIFF_REPORT_FIXTURE_H_
