// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/check_fixture.h"

namespace ostrafel {

namespace {

class StoreRules : public CheckTest {};

TEST_F(StoreRules, FindNothingInASoundTree) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "Chassis": {"@odata.id": "/redfish/v1/C"}})");
  Write("C/index.json", R"({"@odata.id": "/redfish/v1/C", "Name": "C"})");
  EXPECT_EQ(Found("store-"), Lines{});
}

TEST_F(StoreRules, FindIntegersBeyond32Bits) {
  Write("index.json",
        "{\"Most\": 2147483647, \"Least\": -2147483648,\n"
        " \"Above\": 2147483648,\n"
        " \"In\": {\"A\": [0, -2147483649]}}");
  EXPECT_EQ(Found("store-"), (Lines{"store-integer-clamped index.json:2:11 /Above",
                                    "store-integer-clamped index.json:3:18 /In/A/1"}));
  EXPECT_EQ(Sentences("store-"),
            (Lines{"the integer 2147483648 does not fit into 32 bits and is stored as 2147483647",
                   "the integer -2147483649 does not fit into 32 bits and is stored as "
                   "-2147483648"}));
}

TEST_F(StoreRules, FindRealsThatLoseDigits) {
  Write("index.json",
        "{\"Kept\": [0.1, 0.123456, 1e300, -0.0, 1.0, 5e-6],\n"
        " \"Lost\": [0.1234567,\n"
        "  1e-7]}");
  EXPECT_EQ(Found("store-"), (Lines{"store-real-rounded index.json:2:11 /Lost/0",
                                    "store-real-rounded index.json:3:3 /Lost/1"}));
  EXPECT_EQ(
      Sentences("store-"),
      (Lines{"the number needs more than six digits after the point and is stored as 0.123457",
             "the number needs more than six digits after the point and is stored as 0."}));
}

TEST_F(StoreRules, ShortenLongNumbers) {
  Write("index.json", R"({"Kept": 1.5, "Lost": 123456789012345680000.0000001e-14})");
  EXPECT_EQ(Sentences("store-"),
            (Lines{"the number needs more than six digits after the point and is stored as "
                   "1234567.890123"}));
}

TEST_F(StoreRules, FindNamesThatStandTwiceInAnObject) {
  Write("index.json",
        "{\"A\": 1, \"B\": {\"A\": 2},\n"
        " \"A\": 3,\n"
        " \"C\": [{\"D\": 1, \"\\u0044\": 1}],\n"
        " \"A\": 4}");
  EXPECT_EQ(Found("store-"),
            (Lines{"store-duplicate-member index.json:3:17 /C/0/D", "  index.json:3:9 /C/0/D",
                   "store-duplicate-member index.json:4:2 /A", "  index.json:1:2 /A",
                   "  index.json:2:2 /A"}));
  EXPECT_EQ(Sentences("store-"),
            (Lines{"the object has 2 members of this name, and only the value of the last one is "
                   "stored",
                   "the object has 3 members of this name, and only the value of the last one is "
                   "stored"}));
}

TEST_F(StoreRules, FindDuplicatesInAnIncludedFileOnce) {
  Include("all.json", "{\"A\": 1,\n\"A\": 2, \"N\": 4294967296}");
  Write("index.json", R"({"@odata.id": "/redfish/v1", "&&File": "all.json"})");
  Write("C/index.json", R"({"@odata.id": "/redfish/v1/C", "&&File": "all.json"})");
  EXPECT_EQ(Found("store-"),
            (Lines{"store-duplicate-member www/all.json:2:1 /A", "  www/all.json:1:2 /A",
                   "store-integer-clamped www/all.json:2:14 /N"}));
}

TEST_F(StoreRules, FindDuplicatesInAFileThatIsNotLoaded) {
  Write("index.json", "{\"@odata.id\": 5, \"A\": 1, \"A\": 2}");
  EXPECT_EQ(Found("store-"),
            (Lines{"store-duplicate-member index.json:1:26 /A", "  index.json:1:18 /A"}));
}

TEST_F(StoreRules, FindReservedMembersThatAreNoStrings) {
  Write("index.json",
        "{\"&&ETag\": \"x\", \"&&Privileges\":\n"
        " [\"a\"], \"&&privileges\": 1, \"Privileges\": 1,\n"
        " \"In\": {\"&&Async\": null, \"&&File\": 1}}");
  EXPECT_EQ(Found("store-"), (Lines{"store-reserved-type index.json:2:2 /&&Privileges",
                                    "store-reserved-type index.json:3:20 /In/&&Async"}));
  EXPECT_EQ(Sentences("store-").front(),
            "the value of the reserved member \"&&Privileges\" is no string, so that it is stored "
            "like that of any other member");
}

TEST_F(StoreRules, SayNothingOfValuesThatAreNotStored) {
  Write("index.json",
        R"({"@odata.id": "/redfish/v1", "A": {"@odata.id": "/redfish/v1", "N": 4294967296},)"
        R"( "B": {"In": {"@odata.id": 1, "N": 4294967296}, "After": 4294967296}, "C": 0})");
  EXPECT_EQ(Found("store-"), Lines{});
}

}  // namespace

}  // namespace ostrafel
