// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A tree is loaded, exported, and what was exported is loaded again: the store is the same, record
// for record, and so is a second export, byte for byte.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "export/export_fixture.h"
#include "export/reached_keys.h"
#include "memory/server_copy.h"
#include "model/random_tree.h"
#include "support/test_factor.h"

namespace {

namespace fs = std::filesystem;

using model::Command;

class ExportRoundTrip : public ExportTest {
 protected:
  // Loads a random tree, if it can be loaded, and exports the store.
  void PlayRandomTree(std::mt19937_64& generator, const model::RandomTreeOptions& options) {
    fs::remove_all(tree.path());
    fs::create_directory(tree.path());
    model::WriteRandomTree(generator, tree.path(), options);
    (void)store.Run("FLUSHALL");
    if (RunProgram(ProgramCommand({"create", tree.path(), options.uri})).status != 0) return;
    const ostrafel::Server before = ostrafel::CopyOf(store.Contents());
    const TempDirectory folder;
    const Finished first = Export({"--quiet", options.uri, folder.path("1")});
    ASSERT_TRUE(first.status == 0 || first.status == 1) << first.err;
    ASSERT_NO_FATAL_FAILURE(Create(folder.path("1"), options.uri));
    const std::string expected = ostrafel::Dump(
        ostrafel::WhatIsExported(before, {options.uri, true}, ostrafel::CopyOf(store.Contents())));
    if (!ComesBack(first) || expected.empty()) return;
    ASSERT_EQ(ostrafel::Difference(expected, StoreText()), "");
    ASSERT_EQ(Export({"--quiet", options.uri, folder.path("2")}).status, first.status);
    ASSERT_EQ(Difference(ListingOf(folder.path("1")), ListingOf(folder.path("2"))), "");
    ++whole;
  }

  unsigned whole = 0;  // trees whose stores come back
};

TEST_F(ExportRoundTrip, OfPublishedMockups) {
  const char* folder = std::getenv("REDFISH_MOCKUPS");
  if (folder == nullptr) GTEST_SKIP() << "REDFISH_MOCKUPS names no folder of Redfish trees";
  unsigned mockups = 0;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (!entry.is_directory()) continue;
    SCOPED_TRACE(entry.path());
    ASSERT_NO_FATAL_FAILURE(Create(entry.path().string()));
    ExpectRoundTrip();
    ++mockups;
  }
  EXPECT_GT(mockups, 0U);
}

TEST_F(ExportRoundTrip, OfTheExamples) {
  const std::string examples = OSTRAFEL_SOURCE_DIR "/examples/";
  fs::copy(examples + "www", kIncludeDirectory, fs::copy_options::recursive);
  for (const char* name : {"rackmount", "rackmount-update"}) {
    SCOPED_TRACE(name);
    ASSERT_NO_FATAL_FAILURE(Create(examples + name));
    ExpectRoundTrip();
  }
}

TEST_F(ExportRoundTrip, OfSmallRandomTrees) {
  for (std::uint64_t seed = 0; seed < 25 * TestFactor(); ++seed) {
    std::mt19937_64 generator(9800000 + seed);
    model::RandomTreeOptions options;
    if (seed % 4 == 0) options.uri = "/redfish/";
    if (seed % 4 == 1) options.uri = "/";
    ASSERT_NO_FATAL_FAILURE(PlayRandomTree(generator, options)) << seed;
  }
  EXPECT_GT(whole, 10U);
}

TEST_F(ExportRoundTrip, OfRandomTreesWithIncludedFiles) {
  Include("a.json", R"({"A": {"x": [1, {"y": 2}]}, "B": "included", "@odata.id": "/redfish/inc"})");
  Include("c.xml", "<x/>");
  model::RandomTreeOptions options;
  options.include_files = {"a.json", "a.json", "c.xml"};
  options.include_one_in = 3;
  options.folders = 5;
  for (std::uint64_t seed = 0; seed < 25 * TestFactor(); ++seed) {
    std::mt19937_64 generator(9900000 + seed);
    ASSERT_NO_FATAL_FAILURE(PlayRandomTree(generator, options)) << seed;
  }
  EXPECT_GT(whole, 5U);
}

TEST_F(ExportRoundTrip, OfBigRandomTrees) {
  model::RandomTreeOptions options;
  options.bulk = 2500;
  options.folders = 4;
  for (std::uint64_t seed = 0; seed < 8 * TestFactor(); ++seed) {
    std::mt19937_64 generator(9750000 + seed);
    ASSERT_NO_FATAL_FAILURE(PlayRandomTree(generator, options)) << seed;
  }
  EXPECT_GT(whole, 0U);
}

// --- URIs ----------------------------------------------------------------------------------------

TEST_F(ExportRoundTrip, OfAnyUri) {
  tree.Write("index.json", R"({"Name": "Top", "List": [1, [2], {"x": {}}]})");
  tree.Write("a/index.json", R"({"@odata.id": "/elsewhere", "Name": "A", "O": {"y": [true]}})");
  tree.Write("a/b/index.json", R"({"Name": "B", "Link": {"@odata.id": "/x"}})");
  tree.Write("b/index.json", R"({"Name": "B"})");
  for (const std::string uri : {"/", "/redfish/", "/redfish/v1", "/redfish/v1/Chassis/1", "/a*b?c",
                                "/[a-z]\\", "/ blanks ", "r", "/r//", "/\xC3\xA9"}) {
    SCOPED_TRACE(uri);
    ASSERT_NO_FATAL_FAILURE(Create(tree.path(), uri));
    // What is stored at a place of its own choice, elsewhere, is not of this tree.
    (void)store.Run("DEL | /elsewhere | &&/elsewhere/O | &&/elsewhere/O/y");
    ExpectRoundTrip(uri);
  }
}

TEST_F(ExportRoundTrip, OfAPartOfAStore) {
  for (const char* key : {"/r", "/r/a", "/r/a/b", "/ra", "/r/ab", "/r/a*", "/r/a*/x"}) {
    (void)store.Run(Command{"HSET", key, "Key", std::string("\"") + key + "\""});
  }
  ExpectWritten(Export({"/r/a", place.path("a")}), "2 resources", place.path("a"));
  EXPECT_EQ(ListingOf(place.path("a")).size(), 3U);
  ExpectWritten(Export({"/r/a*", place.path("star")}), "2 resources", place.path("star"));
  EXPECT_EQ(ListingOf(place.path("star")).size(), 3U);
  ExpectWritten(Export({"/r/", place.path("r")}), "5 resources", place.path("r"));
}

// --- Files that are included ---------------------------------------------------------------------

TEST_F(ExportRoundTrip, KeepsTheFileThatARootIncludes) {
  Include("a.json", R"({"Name": "Included", "Parts": [1, {"x": 2}]})");
  tree.Write("index.json", R"({"&&File": "a.json"})");
  ASSERT_NO_FATAL_FAILURE(Create(tree.path()));
  const Listing exported = ExpectRoundTrip();
  EXPECT_NE(exported.at("./index.json").find("\"&&File\": \"a.json\""), std::string::npos);
}

TEST_F(ExportRoundTrip, DropsAFileThatIsGoneOrHasChanged) {
  Include("a.json", R"({"Name": "Included"})");
  tree.Write("index.json", R"({"&&File": "a.json"})");
  ASSERT_NO_FATAL_FAILURE(Create(tree.path()));
  const std::string loss =
      "ostrafel-export: /redfish/v1: &&File: a create would include a file that is another or not "
      "there\nostrafel-export: not all comes back: 1 loss at 1 key\n";
  Include("a.json", R"({"Name": "Other"})");
  const Finished changed = Export({"/redfish/v1", place.path("1")});
  EXPECT_EQ(changed.err, loss);
  EXPECT_EQ(changed.status, 1);
  EmptyIncludeDirectory();
  const Finished gone = Export({"/redfish/v1", place.path("2")});
  EXPECT_EQ(gone.err, loss);
  EXPECT_EQ(gone.status, 1);
  EXPECT_EQ(ListingOf(place.path("2")).at("./index.json"),
            "file: {\n    \"Name\": \"Included\"\n}\n");
}

// An update leaves the record that the first load made of a reserved member.
TEST_F(ExportRoundTrip, ListsWhatOnlyAnOutdatedRecordLeadsTo) {
  tree.Write("index.json", R"({"&&ETag": {"@odata.id": "/redfish/v1/e#/1", "a": 1, "b": [1]}})");
  ASSERT_NO_FATAL_FAILURE(Create(tree.path()));
  tree.Write("index.json", R"({"&&ETag": "x"})");
  ASSERT_EQ(RunProgram(ProgramCommand({"update", tree.path(), "/redfish/v1"})).status, 0);
  const std::string rest = ": stands only in what is left out\n";
  const std::string losses =
      "ostrafel-export: &&/redfish/v1/e#/1/b" + rest +
      "ostrafel-export: /redfish/v1: &&Object &&ETag /redfish/v1/e#/1: the hash has another record "
      "of this member\n";
  const Finished finished = Export({"/redfish/v1", out});
  EXPECT_EQ(finished.err, losses + "ostrafel-export: /redfish/v1/e#/1" + rest +
                              "ostrafel-export: not all comes back: 3 losses at 3 keys\n");
  EXPECT_EQ(finished.status, 1);
  // Of one resource, it is another one.
  const Finished printed = Export({"--print", "/redfish/v1"});
  EXPECT_EQ(printed.err, losses + "ostrafel-export: not all comes back: 2 losses at 2 keys\n");
  EXPECT_EQ(printed.status, 1);
}

// Nothing is put at a key where nothing was.
TEST_F(ExportRoundTrip, HasNoFileThatTellsNothingButAKey) {
  (void)store.Run("HSET | /redfish/v1 | Name | \"Top\"");
  (void)store.Run(Command{"HSET", "/redfish/v1//y", "@odata.id", "\"/redfish/v1//y\"", "&&File",
                          "\"gone.json\"", "\xff", "1"});
  const Finished finished = Export({"/redfish/v1", out});
  EXPECT_EQ(finished.status, 1);
  EXPECT_NE(finished.err.find("ostrafel-export: /redfish/v1//y: no folder can be named after the "
                              "key\n"),
            std::string::npos)
      << finished.err;
  EXPECT_NE(finished.err.find("3 losses at 1 key\n"), std::string::npos) << finished.err;
  EXPECT_EQ(ListingOf(out).size(), 1U);
}

// Without the file, a load would store the rest at /redfish/v1/x.
TEST_F(ExportRoundTrip, HasNoFileForNothingButAFileThatIsGone) {
  (void)store.Run("HSET | /redfish/v1 | Name | \"Top\"");
  (void)store.Run(Command{"HSET", "/redfish/v1/x/", "@odata.id", "\"/redfish/v1/x/\"", "&&File",
                          "\"gone.json\""});
  const Finished finished = Export({"/redfish/v1", out});
  EXPECT_EQ(
      finished.err,
      "ostrafel-export: /redfish/v1/x/: no folder can be named after the key\n"
      "ostrafel-export: /redfish/v1/x/: &&File: a create would include a file that is another "
      "or not there\nostrafel-export: not all comes back: 2 losses at 1 key\n");
  EXPECT_EQ(finished.status, 1);
  EXPECT_FALSE(fs::exists(out + "/x/index.json"));
  EXPECT_TRUE(fs::exists(out + "/index.json"));
}

TEST_F(ExportRoundTrip, LooksForIncludedFilesWhereItIsTold) {
  Include("a.json", R"({"Name": "Included"})");
  tree.Write("index.json", R"({"&&File": "a.json"})");
  ASSERT_NO_FATAL_FAILURE(Create(tree.path()));
  EmptyIncludeDirectory();
  place.Write("www/a.json", R"({"Name": "Included"})");
  ExpectWritten(Export({"--www", place.path("www"), "/redfish/v1", out}), "1 resource", out);
}

}  // namespace
