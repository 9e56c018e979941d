// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "play/play.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/message.h"
#include "memory/server_copy.h"
#include "store/store_state.h"
#include "support/temp_directory.h"

namespace ostrafel {

namespace {

const char* const kFlushFailed =
    "Some errors occur while creating hash data into database\n"
    "The data in database would be incorrect\n"
    ">>> Fail to write rest of data into redis\n";

class PlayTest : public testing::Test {
 protected:
  Listing List() const { return ListTree(request); }

  // Plays the files of the tree, in this order of their paths below it.
  Played Play(LoadAction action, const std::vector<std::string>& files,
              OnFailure on_failure = OnFailure::kStop) {
    Listing listing;
    for (const std::string& file : files) {
      listing.list.paths.push_back(tree.path(file));
      listing.list.keys.push_back("/r/" + file);
    }
    return PlayListing(action, listing, on_failure);
  }

  Played PlayListing(LoadAction action, const Listing& listing,
                     OnFailure on_failure = OnFailure::kStop) {
    request.action = action;
    return PlayLoad(&server, request, listing, on_failure);
  }

  std::string NoObject(const std::string& file) const {
    return "The content of " + tree.path(file) + " is not a valid JSON data.\n";
  }

  TempDirectory tree;
  LoadRequest request = {LoadAction::kCreate, tree.path(), "/r", "index.json"};
  Server server;
};

TEST_F(PlayTest, ListsTheFilesWithTheirKeysAndSaysNothing) {
  (void)tree.Write("index.json", "{}");
  (void)tree.Write("a/b/index.json", "{}");
  (void)tree.Write("a/other.json", "{}");
  testing::internal::CaptureStderr();
  const Listing listing = List();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(listing.end, LoadEnd::kDone);
  std::vector<std::string> keys = listing.list.keys;
  std::sort(keys.begin(), keys.end());
  EXPECT_EQ(keys, (std::vector<std::string>{"/r", "/r/a/b"}));
  std::vector<std::string> paths = listing.list.paths;
  std::sort(paths.begin(), paths.end());
  EXPECT_EQ(paths,
            (std::vector<std::string>{tree.path("a/b/index.json"), tree.path("index.json")}));
  EXPECT_TRUE(listing.problems.empty());
}

TEST_F(PlayTest, ListsASingleFile) {
  request.static_data_path = tree.Write("other.json", "{}");
  const Listing listing = List();
  EXPECT_EQ(listing.list.paths, (std::vector<std::string>{tree.path("other.json")}));
  EXPECT_EQ(listing.list.keys, (std::vector<std::string>{"/r"}));
}

TEST_F(PlayTest, APathThatIsNotThereIsAProblemOfTheListingAndEndsTheLoad) {
  request.static_data_path = tree.path("none");
  testing::internal::CaptureStderr();
  const Listing listing = List();
  EXPECT_EQ(listing.end, LoadEnd::kNoSuchPath);
  ASSERT_EQ(listing.problems.size(), 1U);
  EXPECT_EQ(listing.problems[0].first, PathProblem::kNotChecked);
  EXPECT_EQ(listing.problems[0].second, tree.path("none"));
  for (const LoadAction action : {LoadAction::kCreate, LoadAction::kUpdate}) {
    const Played played = PlayListing(action, listing);
    EXPECT_EQ(played.status, 255);
    EXPECT_EQ(played.messages, "Failed to check path " + tree.path("none") +
                                   ".\nInput path should be a file or directory\n");
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(PlayTest, ACreateWithABadPathHasEmptiedTheTree) {
  server.keys = {{"/r/old", Hash{{"x", "1"}}}, {"/other", Hash{{"x", "1"}}}};
  request.static_data_path = tree.path("none");
  EXPECT_EQ(PlayListing(LoadAction::kCreate, List()).status, 255);
  EXPECT_EQ(Dump(server), "hash | /other | x | 1\n");
}

TEST_F(PlayTest, ALoadLeavesWhatARealOneWould) {
  (void)tree.Write("a.json", R"({"A": 1, "L": [true, {"@odata.id": "/c"}]})");
  const Played played = Play(LoadAction::kCreate, {"a.json"});
  EXPECT_EQ(played.status, 0);
  EXPECT_EQ(played.messages, "");
  EXPECT_EQ(Dump(server),
            "list | &&/r/a.json/L | true\nlist | &&/r/a.json/L | &&ObjectRef /c\n"
            "hash | /r/a.json | &&Array L &&/r/a.json/L | \nhash | /r/a.json | A | 1\n");
}

TEST_F(PlayTest, ACreateRemovesTheTreeAndAnUpdateKeepsIt) {
  (void)tree.Write("a.json", R"({"A": 1})");
  server.keys["/r/old"] = Hash{{"x", "1"}};
  (void)Play(LoadAction::kUpdate, {"a.json"});
  EXPECT_EQ(Dump(server), "hash | /r/a.json | A | 1\nhash | /r/old | x | 1\n");
  (void)Play(LoadAction::kCreate, {"a.json"});
  EXPECT_EQ(Dump(server), "hash | /r/a.json | A | 1\n");
}

TEST_F(PlayTest, EachPlayIsARunOfItsOwn) {
  (void)tree.Write("a.json", R"({"A": 1})");
  (void)Play(LoadAction::kCreate, {"a.json"});
  server = {};
  // A run writes each resource once; a second one would leave it out.
  (void)Play(LoadAction::kCreate, {"a.json"});
  EXPECT_EQ(server.keys.size(), 1U);
}

TEST_F(PlayTest, StopsAtTheFirstFailureAndDropsWhatWaits) {
  (void)tree.Write("a.json", R"({"A": 1})");
  (void)tree.Write("b.json", "[1]");
  (void)tree.Write("c.json", "{");
  const Played played = Play(LoadAction::kCreate, {"a.json", "b.json", "c.json"});
  EXPECT_EQ(played.status, 255);
  EXPECT_EQ(played.messages, NoObject("b.json"));
  EXPECT_EQ(Dump(server), "");
}

TEST_F(PlayTest, GoesOnAndEndsWithTheFirstFailure) {
  (void)tree.Write("a.json", "[1]");
  (void)tree.Write("b.json", R"({"B": 1})");
  (void)tree.Write("c.json", "{x");
  (void)tree.Write("d.json", R"({"D": 1})");
  const Played played =
      Play(LoadAction::kCreate, {"a.json", "b.json", "c.json", "d.json"}, OnFailure::kGoOn);
  EXPECT_EQ(played.status, 255);
  EXPECT_EQ(played.messages,
            "error: Failed to read file.\n"
            "error: on line 1: string or '}' expected near 'x'\n" +
                NoObject("a.json"));
  EXPECT_EQ(Dump(server), "hash | /r/b.json | B | 1\nhash | /r/d.json | D | 1\n");
}

TEST_F(PlayTest, TellsEverythingInTheOrderOfTheLoad) {
  (void)tree.Write("a.json", "{}");
  (void)tree.Write("b.json", "{\"A\":\n\n 1");
  request.static_data_path = tree.path("b.json");
  Listing listing;
  listing.list.paths = {tree.path("a.json"), tree.path("b.json")};
  listing.list.keys = {"/a", "/b"};
  listing.problems = {{PathProblem::kNotChecked, "/x"}, {PathProblem::kNotListed, "too long"}};
  const Played played = PlayListing(LoadAction::kUpdate, listing);
  EXPECT_EQ(played.messages,
            "Failed to check path /x.\nFailed to push data: too long.\n"
            "error: Failed to read file.\n"
            "error: on line 3: '}' expected near end of file\n" +
                NoObject("b.json"));
}

TEST_F(PlayTest, AWalkThatFailedEndsTheLoadUnlessItIsToGoOn) {
  (void)tree.Write("a.json", R"({"A": 1})");
  Listing listing;
  listing.end = LoadEnd::kNotWalked;
  listing.list.paths = {tree.path("a.json")};
  listing.list.keys = {"/a"};
  const Played stopped = PlayListing(LoadAction::kUpdate, listing);
  EXPECT_EQ(stopped.status, 255);
  EXPECT_EQ(stopped.messages, "Error occurs while reading files\n");
  EXPECT_EQ(Dump(server), "");
  (void)PlayListing(LoadAction::kUpdate, listing, OnFailure::kGoOn);
  EXPECT_EQ(Dump(server), "hash | /a | A | 1\n");
}

TEST_F(PlayTest, AKeyOfAnotherTypeIsTheLastFlushsFailure) {
  (void)tree.Write("a.json", R"({"A": 1})");
  server.keys["/r/a.json"] = OtherType();
  request.uri = "/elsewhere";
  const Played played = Play(LoadAction::kCreate, {"a.json"});
  EXPECT_EQ(played.status, 255);
  EXPECT_EQ(played.messages, kFlushFailed);
  EXPECT_EQ(Play(LoadAction::kCreate, {"a.json"}, OnFailure::kGoOn).messages, kFlushFailed);
}

TEST_F(PlayTest, AFailureOfAFileComesBeforeThatOfTheLastFlush) {
  (void)tree.Write("a.json", R"({"A": 1})");
  (void)tree.Write("b.json", "[1]");
  server.keys["/r/a.json"] = OtherType();
  request.uri = "/elsewhere";
  const Played played = Play(LoadAction::kCreate, {"a.json", "b.json"}, OnFailure::kGoOn);
  EXPECT_EQ(played.status, 255);
  EXPECT_EQ(played.messages, std::string(HashFlushFailed) + NoObject("b.json"));
}

TEST_F(PlayTest, AnEmptyUriOfACreateIsRaised) {
  request.uri = "";
  EXPECT_THROW((void)Play(LoadAction::kCreate, {}), std::out_of_range);
  testing::internal::CaptureStderr();
  PrintMessage("not collected any more");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "not collected any more");
}

TEST_F(PlayTest, CountsTheSearchesOfAllKeysOfAnUpdate) {
  (void)tree.Write("a.json", R"({"Records": [{"x": 1}], "Plain": [1, 2], "Empty": []})");
  (void)Play(LoadAction::kCreate, {"a.json"});
  EXPECT_EQ(server.searches, 0U);
  (void)Play(LoadAction::kUpdate, {"a.json"});
  EXPECT_EQ(server.searches, 1U);  // of the array whose list holds a record
  (void)Play(LoadAction::kUpdate, {"a.json"});
  EXPECT_EQ(server.searches, 2U);
}

}  // namespace

}  // namespace ostrafel
