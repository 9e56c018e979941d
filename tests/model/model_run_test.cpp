// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "model/model_fixture.h"

namespace model {
namespace {

TEST_F(ModelTest, CreateSendsThreePatternsAndDeletesKeyByKey) {
  store = {{"/r", {Hash{{"x", "1"}}}}, {"/r/a", {List{"1"}}},        {"/r/b", {List{"1"}}},
           {"&&/r/c", {List{"1"}}},    {"&&/r", {Hash{{"x", "1"}}}}, {"/rX", {Hash{{"x", "1"}}}}};
  folder.Write("tree/readme.txt", "");
  EXPECT_EQ(Play({"CREATE", folder.Path() + "/tree", "/r"}).out, kSuccessLine);
  EXPECT_EQ(Stream(),
            "keys | /r\n--\ndel | /r\n--\n"
            "keys | /r/*\n--\ndel | /r/a\ndel | /r/b\n--\n"
            "keys | &&/r/*\n--\ndel | &&/r/c\n");
  EXPECT_EQ(Dump(store), "hash | &&/r | x | 1\nhash | /rX | x | 1\n");
}

TEST_F(ModelTest, AUriWithALastSlashGetsNoSecondOne) {
  folder.Write("tree/readme.txt", "");
  Play({"create", folder.Path() + "/tree", "/r/"});
  EXPECT_EQ(Stream(), "keys | /r/\n--\nkeys | /r/*\n--\nkeys | &&/r/*\n");
}

TEST_F(ModelTest, FoldersBecomeKeys) {
  folder.Write("t/index.json", R"({"a": 1})");
  folder.Write("t/v1/INDEX.JSON", R"({"b": 1})");
  folder.Write("t/v1/Systems/index.json", R"({"c": 1})");
  folder.Write("t/.h/index.json", R"({"d": 1})");
  EXPECT_EQ(Play({"create", folder.Path() + "/t", "/r"}).status, 0);
  EXPECT_EQ(Dump(store), "hash | /r | a | 1\nhash | /r/.h | d | 1\nhash | /r/v1/Systems | c | 1\n");
  Play({"create", folder.Path() + "/t/", "/r/", "INDEX.JSON"});
  EXPECT_EQ(Dump(store), "hash | /r | a | 1\nhash | /r/v1 | b | 1\n");
}

TEST_F(ModelTest, AnEmptyFileNameMeansTheDefault) {
  folder.Write("t/index.json", R"({"a": 1})");
  Play({"create", folder.Path() + "/t", "/r", ""});
  EXPECT_EQ(Dump(store), "hash | /r | a | 1\n");
}

TEST_F(ModelTest, ADanglingLinkIsReportedAndSkipped) {
  folder.Write("t/index.json", R"({"a": 1})");
  std::filesystem::create_symlink("/nowhere", folder.Path() + "/t/gone");
  const Outcome outcome = Play({"create", folder.Path() + "/t", "/r"});
  EXPECT_EQ(outcome.err, "Failed to check path " + folder.Path() + "/t/gone.\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(Dump(store), "hash | /r | a | 1\n");
}

TEST_F(ModelTest, AnUnknownActionPrintsTheUsageAndSendsNothing) {
  const Outcome outcome = Play({"creates", "/nowhere", "/r"});
  const std::string start =
      "Invalid Action parameter.\nUsage:\n  Ostrafel <Action> <StaticDataPath>";
  const std::string end = "not found in the folder, the key would not be updated.\n\n";
  EXPECT_EQ(outcome.err.substr(0, start.size()), start);
  EXPECT_EQ(outcome.err.substr(outcome.err.size() - end.size()), end);
  EXPECT_EQ(outcome.status, 255);
  EXPECT_TRUE(flights.empty());
}

TEST_F(ModelTest, CreateEmptiesTheTreeBeforeItLooksAtThePath) {
  store = {{"/r", {Hash{{"x", "1"}}}}};
  const Outcome outcome = Play({"create", folder.Path() + "/gone", "/r"});
  EXPECT_EQ(outcome.err, "Failed to check path " + folder.Path() +
                             "/gone.\nInput path should be a file or directory\n");
  EXPECT_EQ(outcome.status, 255);
  EXPECT_TRUE(store.empty());
}

TEST_F(ModelTest, OnlyJsonFilesAreTakenAsFiles) {
  const std::string text = folder.Write("data.txt", R"({"a": 1})");
  EXPECT_EQ(Play({"update", text, "/r"}).err, "Input path should be a file or directory\n");
  const std::string json = folder.Write("data.JSON", R"({"a": 1})");
  EXPECT_EQ(Play({"update", json, "/r", "ignored"}).out, kSuccessLine);
  EXPECT_EQ(Dump(store), "hash | /r | a | 1\n");
}

TEST_F(ModelTest, DocumentsThatAreNoObjectsEndTheRun) {
  const std::string path = folder.Path() + "/document.json";
  const std::string invalid = "The content of " + path + " is not a valid JSON data.\n";
  EXPECT_EQ(Create("/r", "[1, 2]").err, invalid);
  EXPECT_EQ(Create("/r", "").err,
            "error: Failed to read file.\n"
            "error: on line 1: '[' or '{' expected near end of file\n" +
                invalid);
  EXPECT_EQ(Create("/r", "{\n\"a\": }\n").err,
            "error: on line 2: unexpected token near '}'\n" + invalid);
  EXPECT_EQ(Create("/r", "[1, 2]").status, 255);
}

TEST_F(ModelTest, ShortFilesAndByteOrderMarksLoad) {
  const Outcome braces = Create("/r", "{}");
  EXPECT_EQ(braces.err, "error: Failed to read file.\n");
  EXPECT_EQ(braces.status, 0);
  EXPECT_EQ(Create("/r", "\xEF\xBB\xBF{\"a\": 1}").err, "");
  EXPECT_EQ(Dump(store), "hash | /r | a | 1\n");
}

TEST_F(ModelTest, ARootIdThatIsNoStringFailsInSilence) {
  const Outcome outcome = Create("/r", R"({"@odata.id": 1, "a": 1})");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.status, 255);
}

TEST_F(ModelTest, AnIncludedFileReplacesTheMembers) {
  folder.Write("www/in/a.json", R"({"x": 1, "&&File": "other", "@odata.id": "/b", "y": 2})");
  Create("/r", R"({"&&File": "in/a.json", "z": 3, "@odata.id": "/a"})");
  EXPECT_EQ(Dump(store),
            "hash | /a | &&File | \"in/a.json\"\n"
            "hash | /a | @odata.id | \"/b\"\n"
            "hash | /a | x | 1\n"
            "hash | /a | y | 2\n");
}

TEST_F(ModelTest, AnIncludedXmlFileChangesNothing) {
  folder.Write("www/a.xml", "<a/>");
  folder.Write("www/a.XML", "<a/>");
  Create("/r", R"({"&&File": "a.xml", "z": 3})");
  EXPECT_EQ(Dump(store), "hash | /r | &&File | \"a.xml\"\nhash | /r | z | 3\n");
  const std::string target = folder.Path() + "/www/a.XML";
  EXPECT_EQ(Create("/r", R"({"&&File": "a.XML", "z": 3})").err,
            "error: on line 1: '[' or '{' expected near '<'\nUnqualified JSON file - " + target +
                "\n>>> Error occurs when processing &&File in " + folder.Path() +
                "/document.json\n");
}

TEST_F(ModelTest, InclusionsThatCannotBeDoneEndTheRun) {
  const std::string last =
      ">>> Error occurs when processing &&File in " + folder.Path() + "/document.json\n";
  folder.Write("www/list.json", "[1]");
  EXPECT_EQ(Create("/r", R"({"&&File": 1})").err,
            "The value of &&File is not string type.\n" + last);
  EXPECT_EQ(Create("/r", R"({"&&File": "a..b"})").err, "Notation '..' is unacceptable.\n" + last);
  EXPECT_EQ(Create("/r", R"({"&&File": "gone.json"})").err, "File not found.\n" + last);
  EXPECT_EQ(Create("/r", R"({"&&File": "list.json"})").err,
            "Unqualified JSON file - " + folder.Path() + "/www/list.json\n" + last);
  EXPECT_EQ(Create("/r", R"({"&&File": ""})").err,
            "error: Failed to read file.\n"
            "error: on line 1: '[' or '{' expected near end of file\n"
            "Unqualified JSON file - " +
                folder.Path() + "/www/\n" + last);
}

TEST_F(ModelTest, ALaterBadFileLeavesWhatWaitsUnsent) {
  folder.Write("t/index.json", R"({"a": 1})");
  folder.Write("t/b/index.json", "[]");
  EXPECT_EQ(Play({"update", folder.Path() + "/t", "/r"}).status, 255);
  EXPECT_TRUE(store.empty());
}

TEST_F(ModelTest, TheLastFlushesSendHashesBeforeLists) {
  Create("/r", R"({"L": [2, 1], "b": 1, "a": {"@odata.id": "/x"}})");
  EXPECT_EQ(Stream(),
            "keys | /r\n--\nkeys | /r/*\n--\nkeys | &&/r/*\n--\n"
            "HSET | /r | &&Array L &&/r/L | \n"
            "HSET | /r | &&ObjectRef a /x | \n"
            "HSET | /r | b | 1\n"
            "--\n"
            "RPUSH | &&/r/L | 2\n"
            "RPUSH | &&/r/L | 1\n");
}

TEST_F(ModelTest, ABadReplyIsReportedOnceAndStopsTheLastFlushes) {
  store = {{"/x", {List{"1"}}}};
  const Outcome outcome =
      Create("/r", R"({"A": {"@odata.id": "/x", "v": 1, "w": 2}, "L": [1], "z": 1})");
  EXPECT_EQ(outcome.err,
            "Some errors occur while creating hash data into database\n"
            "The data in database would be incorrect\n"
            ">>> Fail to write rest of data into redis\n");
  EXPECT_EQ(outcome.status, 255);
  EXPECT_EQ(Dump(store),
            "hash | /r | &&Array L &&/r/L | \nhash | /r | &&Object A /x | \nhash | /r | z | 1\n"
            "list | /x | 1\n");
}

TEST_F(ModelTest, AConnectionThatBreaksFailsEveryMissingRead) {
  ReplayEndpoint removal(
      {{{{"keys", "/r"}}, {ArrayReply({StringReply("/r")})}}, {{{"del", "/r"}}, {}}});
  EXPECT_EQ(RunModel(removal, {"create", "/", "/r"}).err,
            "Failed to get reply\nFail to remove resource tree\n");
  EXPECT_FALSE(removal.FirstDivergence());

  const std::string path = folder.Write("d.json", R"({"&&ETag": "x", "&&Async": "y"})");
  ReplayEndpoint flush({{{{"HSET", "/r", "&&Async", "y"}, {"HSET", "/r", "&&ETag", "x"}}, {}}});
  EXPECT_EQ(RunModel(flush, {"update", path, "/r"}).err,
            "Failed to get reply\nFailed to get reply\n"
            ">>> Fail to write rest of data into redis\n");
  EXPECT_FALSE(flush.FirstDivergence());
}

}  // namespace
}  // namespace model
