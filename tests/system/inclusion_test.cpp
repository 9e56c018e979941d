// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <string>
#include <utility>

#include "system/system_fixture.h"

namespace {

class IncludedFiles : public SystemTest {};

TEST_F(IncludedFiles, StandInForTheMembersOfTheRoot) {
  Include("v1/a.json", R"({"@odata.id": "/included", "x": 1, "y": {"z": "t"}})");
  Include("a.xml", "<x/>");
  const std::pair<const char*, const char*> cases[] = {
      {R"({"Own": 1, "&&File": "v1/a.json"})",
       "hash | &&/r/y | z | \"t\"\n"
       "hash | /r | &&File | \"v1/a.json\"\n"
       "hash | /r | &&Object y &&/r/y | \n"
       "hash | /r | @odata.id | \"/included\"\n"
       "hash | /r | x | 1\n"},
      // The key is chosen before.
      {R"({"@odata.id": "/including", "&&File": "v1/a.json"})",
       "hash | &&/including/y | z | \"t\"\n"
       "hash | /including | &&File | \"v1/a.json\"\n"
       "hash | /including | &&Object y &&/including/y | \n"
       "hash | /including | @odata.id | \"/included\"\n"
       "hash | /including | x | 1\n"},
      {R"({"O": {"&&File": "none.json"}})",
       "hash | &&/r/O | &&File | \"none.json\"\n"
       "hash | /r | &&Object O &&/r/O | \n"},
      {R"({"Own": 1, "&&File": "a.xml"})", "hash | /r | &&File | \"a.xml\"\nhash | /r | Own | 1\n"},
  };
  for (const auto& [document, dump] : cases) {
    (void)store.Run("FLUSHALL");
    LoadDocument("create", document);
    EXPECT_EQ(store.Dump(), dump);
  }
}

TEST_F(IncludedFiles, AreRefused) {
  Include("a.XML", "<x/>");
  Include("a.json", "[1, 2, 3]");
  const std::string no_json = "error: on line 1: '[' or '{' expected near ";
  const std::string unqualified = "Unqualified JSON file - /usr/local/nginx/www/";
  const std::pair<std::string, std::string> cases[] = {
      {"5", "The value of &&File is not string type.\n"},
      {R"("a..b.json")", "Notation '..' is unacceptable.\n"},
      {R"("n.json")", "File not found.\n"},
      {R"("a.json")", unqualified + "a.json\n"},
      {R"("a.XML")", no_json + "'<'\n" + unqualified + "a.XML\n"},
      // The directory itself.
      {R"("")", "error: Failed to read file.\n" + no_json + "end of file\n" + unqualified + "\n"},
  };
  for (const auto& [name, err] : cases) {
    const std::string file = tree.Write("a.json", "{\"&&File\": " + name + "}");
    ExpectFailure({"update", file, "/r"},
                  err + ">>> Error occurs when processing &&File in " + file + "\n");
    EXPECT_EQ(Sent(), "");
  }
}

TEST_F(IncludedFiles, ArePrunedInAnUpdate) {
  Include("a.json", R"({"x": 1})");
  (void)store.Run("HSET | &&/r/x | old | 1");
  const std::string file = tree.Write("a.json", R"({"&&File": "a.json"})");
  Load({"update", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | &&File | \"a.json\"\nhash | /r | x | 1\n");
}

}  // namespace
