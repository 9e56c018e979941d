// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <string>

#include "system/system_fixture.h"

namespace {

class IncludedFiles : public SystemTest {
 protected:
  // Loads a root object whose inclusion fails with these lines.
  void ExpectRefused(const std::string& json, const std::string& lines) {
    const std::string file = tree.Write("a.json", json);
    ExpectFailure({"update", file, "/r"},
                  lines + ">>> Error occurs when processing &&File in " + file + "\n");
    EXPECT_EQ(Sent(), "");
  }
};

TEST_F(IncludedFiles, StandInForTheMembersOfTheRoot) {
  Include("redfish/v1/a.json", R"({"x": 1, "y": {"z": "t"}})");
  const std::string file = tree.Write("a.json", R"({"Own": 1, "&&File": "redfish/v1/a.json"})");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(),
            "hash | &&/r/y | z | \"t\"\n"
            "hash | /r | &&File | \"redfish/v1/a.json\"\n"
            "hash | /r | &&Object y &&/r/y | \n"
            "hash | /r | x | 1\n");
}

TEST_F(IncludedFiles, DoNotChooseTheKey) {
  Include("a.json", R"({"@odata.id": "/included", "x": 1})");
  const std::string file =
      tree.Write("a.json", R"({"@odata.id": "/including", "&&File": "a.json"})");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(),
            "hash | /including | &&File | \"a.json\"\n"
            "hash | /including | @odata.id | \"/included\"\n"
            "hash | /including | x | 1\n");
}

TEST_F(IncludedFiles, DoNotGiveAKeyToARootWithoutAnId) {
  Include("a.json", R"({"@odata.id": "/included", "x": 1})");
  const std::string file = tree.Write("a.json", R"({"&&File": "a.json"})");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(),
            "hash | /r | &&File | \"a.json\"\n"
            "hash | /r | @odata.id | \"/included\"\n"
            "hash | /r | x | 1\n");
}

TEST_F(IncludedFiles, InNestedObjectsAreOrdinaryMembers) {
  const std::string file = tree.Write("a.json", R"({"O": {"&&File": "none.json"}})");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(),
            "hash | &&/r/O | &&File | \"none.json\"\n"
            "hash | /r | &&Object O &&/r/O | \n");
}

TEST_F(IncludedFiles, OfXmlOnlyNeedToExist) {
  Include("a.xml", "<x/>");
  const std::string file = tree.Write("a.json", R"({"Own": 1, "&&File": "a.xml"})");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | &&File | \"a.xml\"\nhash | /r | Own | 1\n");
}

TEST_F(IncludedFiles, OfXmlInCapitalsAreParsed) {
  Include("a.XML", "<x/>");
  ExpectRefused(R"({"&&File": "a.XML"})",
                "error: on line 1: '[' or '{' expected near '<'\n"
                "Unqualified JSON file - /usr/local/nginx/www/a.XML\n");
}

TEST_F(IncludedFiles, MustBeNamedByAString) {
  ExpectRefused(R"({"&&File": 5})", "The value of &&File is not string type.\n");
}

TEST_F(IncludedFiles, MustNotHoldTwoPoints) {
  ExpectRefused(R"({"&&File": "a..b.json"})", "Notation '..' is unacceptable.\n");
}

TEST_F(IncludedFiles, MustExist) { ExpectRefused(R"({"&&File": "n.json"})", "File not found.\n"); }

TEST_F(IncludedFiles, MustHoldAnObject) {
  Include("a.json", "[1, 2, 3]");
  ExpectRefused(R"({"&&File": "a.json"})", "Unqualified JSON file - /usr/local/nginx/www/a.json\n");
}

TEST_F(IncludedFiles, WithAnEmptyNameAreTheDirectoryItself) {
  ExpectRefused(R"({"&&File": ""})",
                "error: Failed to read file.\n"
                "error: on line 1: '[' or '{' expected near end of file\n"
                "Unqualified JSON file - /usr/local/nginx/www/\n");
}

TEST_F(IncludedFiles, ArePrunedInAnUpdate) {
  Include("a.json", R"({"x": 1})");
  (void)store.Run("HSET | &&/r/x | old | 1");
  const std::string file = tree.Write("a.json", R"({"&&File": "a.json"})");
  Load({"update", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | &&File | \"a.json\"\nhash | /r | x | 1\n");
}

}  // namespace
