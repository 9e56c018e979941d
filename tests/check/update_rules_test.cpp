// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/check_fixture.h"

namespace ostrafel {

namespace {

class UpdateRules : public CheckTest {};

TEST_F(UpdateRules, FindNothingInASoundTree) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "Chassis": {"@odata.id": "/redfish/v1/C"}})");
  Write("C/index.json", R"({"@odata.id": "/redfish/v1/C", "Name": "C"})");
  EXPECT_EQ(Found("update-"), Lines{});
}

}  // namespace

}  // namespace ostrafel
