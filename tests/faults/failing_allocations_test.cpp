// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Memory that runs out, at each allocation in its turn. The commonest end is that of the C++
// library: nothing of the program takes std::bad_alloc.
#include <string>

#include "faults/failing_series.h"

namespace {

class FailingAllocation : public FailingSeries {
 protected:
  void SetUp() override {
#ifdef OSTRAFEL_WITHOUT_FAILING_ALLOCATION
    GTEST_SKIP() << "the sanitizers' own allocator cannot be told to fail";
#endif
    FailingSeries::SetUp();
  }
};

TEST_F(FailingAllocation, NeverStoresASmallFileInPart) {
  path = tree.Write("small.json", R"({"Text": "more than the sixteen characters of a start"})");
  uri = "/a-small-file-of-a-machine";
  FailEveryCall("allocation", {}, 60);
}

// Without memory for its own text "&&File" the resource is stored with what the included file says
// there: all else of it is whole.
TEST_F(FailingAllocation, OfAWholeTreeCostsAtMostTheNameOfAnIncludedFile) {
  const std::string field = "hash | /redfish-of-a-machine/Chassis/One | &&File | ";
  const std::string kept = field + "\"redfish/one.json\"\n";
  const std::string included = field + "3\n";
  FailEveryCall(
      "allocation",
      [&](const FailingCalls& /*failing*/, const FailingRun& run) {
        if (run.finished.status != 0) return false;
        std::string expected = clean_store;
        const std::size_t place = expected.find(kept);
        if (place == std::string::npos) return false;
        expected.replace(place, kept.size(), included);
        return run.finished.out == kSuccessLine && run.finished.err.empty() &&
               store.Dump() == expected;
      },
      60);
}

}  // namespace
