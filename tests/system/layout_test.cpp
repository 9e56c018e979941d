// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The store after a create, record by record.
#include <string>

#include "system/system_fixture.h"

namespace {

class StoredLayout : public SystemTest {
 protected:
  // Creates one resource at a key and returns the store.
  std::string Create(const std::string& key, const std::string& json) {
    LoadDocument("create", json, key);
    return store.Dump();
  }
};

TEST_F(StoredLayout, OfAChassis) {
  EXPECT_EQ(Create("/redfish/v1/Chassis/1", R"({
              "@odata.id": "/redfish/v1/Chassis/1",
              "Name": "Chassis One",
              "Power": 100,
              "Status": {"State": "Enabled", "Health": "OK"},
              "Links": {"ManagedBy": [{"@odata.id": "/redfish/v1/Managers/1"}]},
              "Sensors": [{"Name": "Fan", "Reading": 3.5}, "spare"],
              "&&ETag": "W/\"1\""
            })"),
            "hash | &&/redfish/v1/Chassis/1/Links | "
            "&&Array ManagedBy &&/redfish/v1/Chassis/1/Links/ManagedBy | \n"
            "list | &&/redfish/v1/Chassis/1/Links/ManagedBy | &&ObjectRef /redfish/v1/Managers/1\n"
            "list | &&/redfish/v1/Chassis/1/Sensors | &&Object &&/redfish/v1/Chassis/1/Sensors/0\n"
            "list | &&/redfish/v1/Chassis/1/Sensors | \"spare\"\n"
            "hash | &&/redfish/v1/Chassis/1/Sensors/0 | Name | \"Fan\"\n"
            "hash | &&/redfish/v1/Chassis/1/Sensors/0 | Reading | 3.5\n"
            "hash | &&/redfish/v1/Chassis/1/Status | Health | \"OK\"\n"
            "hash | &&/redfish/v1/Chassis/1/Status | State | \"Enabled\"\n"
            "hash | /redfish/v1/Chassis/1 | "
            "&&Array Sensors &&/redfish/v1/Chassis/1/Sensors | \n"
            "hash | /redfish/v1/Chassis/1 | &&ETag | W/\\\"1\\\"\n"
            "hash | /redfish/v1/Chassis/1 | &&Object Links &&/redfish/v1/Chassis/1/Links | \n"
            "hash | /redfish/v1/Chassis/1 | &&Object Status &&/redfish/v1/Chassis/1/Status | \n"
            "hash | /redfish/v1/Chassis/1 | @odata.id | \"/redfish/v1/Chassis/1\"\n"
            "hash | /redfish/v1/Chassis/1 | Name | \"Chassis One\"\n"
            "hash | /redfish/v1/Chassis/1 | Power | 100\n");
}

TEST_F(StoredLayout, OfAnInlineResource) {
  EXPECT_EQ(Create("/c", R"({"Status": {"@odata.id": "/c/Status", "State": "Enabled"}})"),
            "hash | /c | &&Object Status /c/Status | \n"
            "hash | /c/Status | @odata.id | \"/c/Status\"\n"
            "hash | /c/Status | State | \"Enabled\"\n");
}

TEST_F(StoredLayout, OfEmptyObjectsAndArrays) {
  EXPECT_EQ(Create("/r", R"({"O": {}, "A": []})"),
            "hash | /r | &&Array A &&/r/A | \n"
            "hash | /r | &&Object O &&/r/O | \n");
}

TEST_F(StoredLayout, OfNamesWithBlanksAndSlashes) {
  EXPECT_EQ(Create("/r//", R"({"A ": {"x": 1}, "B/": [1], "": {"y": 2}, "C//D": [2]})"),
            "hash | &&/r/ | y | 2\n"
            "hash | &&/r/A  | x | 1\n"
            "list | &&/r/B/ | 1\n"
            "list | &&/r/C/D | 2\n"
            "hash | /r// | &&Array B/ &&/r/B/ | \n"
            "hash | /r// | &&Array C//D &&/r/C/D | \n"
            "hash | /r// | &&Object  &&/r/ | \n"
            "hash | /r// | &&Object A  &&/r/A  | \n");
}

TEST_F(StoredLayout, OfOtherRootKeys) {
  EXPECT_EQ(Create("redfish", R"({"A": {"x": 1}})"),
            "hash | &&redfish/A | x | 1\n"
            "hash | redfish | &&Object A &&redfish/A | \n");
  (void)store.Run("FLUSHALL");
  EXPECT_EQ(Create("&&/r", R"({"&&Privileges": ["a"]})"),
            "hash | &&/r | &&Array &&Privileges &&/r/&&Privileges | \n"
            "list | &&/r/&&Privileges | \"a\"\n");
  (void)store.Run("FLUSHALL");
  EXPECT_EQ(Create("/r", "{ }"), "");
}

TEST_F(StoredLayout, OfArraysInArrays) {
  EXPECT_EQ(Create("/r", R"({"M": [1, 1, [2, [3]], {"A": 5}, {"@odata.id": "/x"}, null]})"),
            "list | &&/r/M | 1\n"
            "list | &&/r/M | 1\n"
            "list | &&/r/M | &&Array &&/r/M/2\n"
            "list | &&/r/M | &&Object &&/r/M/3\n"
            "list | &&/r/M | &&ObjectRef /x\n"
            "list | &&/r/M | null\n"
            "list | &&/r/M/2 | 2\n"
            "list | &&/r/M/2 | &&Array &&/r/M/2/1\n"
            "list | &&/r/M/2/1 | 3\n"
            "hash | &&/r/M/3 | A | 5\n"
            "hash | /r | &&Array M &&/r/M | \n");
}

TEST_F(StoredLayout, OfScalars) {
  EXPECT_EQ(Create("/r", R"({"s": "a\"b\\c\n%s", "i": -7, "big": 3000000000, "r": 1.0, "f": 0.1,
                             "t": true, "n": null, "z": "", "u": "\u00e9"})"),
            "hash | /r | big | 2147483647\n"
            "hash | /r | f | 0.1\n"
            "hash | /r | i | -7\n"
            "hash | /r | n | null\n"
            "hash | /r | r | 1.\n"
            "hash | /r | s | \"a\\\"b\\\\c\n%s\"\n"
            "hash | /r | t | true\n"
            "hash | /r | u | \"\xC3\xA9\"\n"
            "hash | /r | z | \"\"\n");
}

TEST_F(StoredLayout, ListsAreSentAfterHashesInAscendingOrder) {
  EXPECT_EQ(Create("/r", R"({"B": [2, 1], "A": [3], "x": 1})"),
            "list | &&/r/A | 3\n"
            "list | &&/r/B | 2\n"
            "list | &&/r/B | 1\n"
            "hash | /r | &&Array A &&/r/A | \n"
            "hash | /r | &&Array B &&/r/B | \n"
            "hash | /r | x | 1\n");
  EXPECT_EQ(Sent(),
            "keys | /r\n--\nkeys | /r/*\n--\nkeys | &&/r/*\n--\n"
            "HSET | /r | &&Array A &&/r/A | \n"
            "HSET | /r | &&Array B &&/r/B | \n"
            "HSET | /r | x | 1\n"
            "--\n"
            "RPUSH | &&/r/A | 3\n"
            "RPUSH | &&/r/B | 2\n"
            "RPUSH | &&/r/B | 1\n");
}

}  // namespace
