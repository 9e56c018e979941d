// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/resource_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "model/memory_store.h"
#include "store/queue.h"
#include "store/store_fixture.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

// Writes as a create does: nothing is pruned, so nothing is sent before a flush.
class Writer : public StoreTest {
 protected:
  Writer() { Store->MergeMode = false; }

  unsigned Write(const std::string& key, const std::string& json) {
    return WriteResource(server(), key, Parse(json).get());
  }

  // What waits in the batches, as it would be stored.
  static std::string Pending() {
    model::Store stored;
    for (const auto& [key, fields] : PendingFields()) stored[key].value = fields;
    for (const auto& [key, values] : PendingValues()) stored[key].value = values;
    return model::Dump(stored);
  }
};

// Writes as an update does.
class UpdateWriter : public Writer {
 protected:
  UpdateWriter() { Store->MergeMode = true; }
};

TEST_F(Writer, WritesTheMembersOfAKeyOncePerRun) {
  EXPECT_EQ(Write("/r", R"({"A": 1})"), 1U);
  EXPECT_EQ(Write("/r", R"({"A": 2, "B": 3})"), 1U);
  EXPECT_EQ(Pending(), "hash | /r | A | 1\n");
  EXPECT_TRUE(Store->VisitedResourceMap.at("/r"));
}

TEST_F(Writer, AnEmptyRootWritesNothingAndIsVisited) {
  EXPECT_EQ(Write("/r", "{}"), 1U);
  EXPECT_EQ(Pending(), "");
  EXPECT_TRUE(Store->VisitedResourceMap.at("/r"));
}

TEST_F(Writer, ReportsTheOutcomeOfTheLastMember) {
  EXPECT_EQ(Write("/a", R"({"Bad": {"@odata.id": 1}, "Good": 1})"), 1U);
  EXPECT_EQ(Write("/b", R"({"Good": 1, "Bad": {"@odata.id": 1}})"), 0U);
  EXPECT_EQ(Pending(),
            "hash | /a | Good | 1\n"
            "hash | /b | Good | 1\n");
}

TEST_F(Writer, ANestedObjectStopsAtItsFirstFailure) {
  EXPECT_EQ(Write("/r", R"({"O": {"A": 1, "Bad": {"@odata.id": 1}, "B": 2}})"), 0U);
  EXPECT_EQ(Pending(),
            "hash | &&/r/O | A | 1\n"
            "hash | /r | &&Object O &&/r/O | \n");
}

TEST_F(Writer, AnArrayStopsAtItsFirstFailureAndGetsNoRecord) {
  EXPECT_EQ(Write("/r", R"({"L": [1, {"@odata.id": null}, 2]})"), 0U);
  EXPECT_EQ(Pending(), "list | &&/r/L | 1\n");
}

TEST_F(Writer, AnObjectWithAnIdLiesUnderItAndIsWrittenOnce) {
  EXPECT_EQ(Write("/1", R"({"O": {"@odata.id": "/a", "X": 1}})"), 1U);
  EXPECT_EQ(Write("/2", R"({"P": {"@odata.id": "/a", "X": 2, "Y": 3}})"), 1U);
  EXPECT_EQ(Pending(),
            "hash | /1 | &&Object O /a | \n"
            "hash | /2 | &&Object P /a | \n"
            "hash | /a | @odata.id | \"/a\"\n"
            "hash | /a | X | 1\n");
  EXPECT_TRUE(Store->VisitedResourceMap.at("/a"));
}

TEST_F(Writer, ARootThatWasWrittenInlineIsNotWrittenAgain) {
  EXPECT_EQ(Write("/1", R"({"O": {"@odata.id": "/a", "X": 1}})"), 1U);
  EXPECT_EQ(Write("/a", R"({"X": 2})"), 1U);
  EXPECT_EQ(store.Dump(), "");
  EXPECT_EQ(PendingFields().at("/a").at("X"), "1");
}

TEST_F(Writer, AnObjectInsideItselfGetsOnlyItsRecord) {
  EXPECT_EQ(Write("/a", R"({"O": {"@odata.id": "/a", "X": 1}})"), 1U);
  EXPECT_EQ(Pending(), "hash | /a | &&Object O /a | \n");
}

TEST_F(Writer, DerivedKeysAreNeverVisited) {
  EXPECT_EQ(Write("/r", R"({"O": {"X": 1}, "L": [{"X": 1}]})"), 1U);
  EXPECT_EQ(Store->VisitedResourceMap, (std::map<std::string, bool>{{"/r", true}}));
}

TEST_F(Writer, LinksAreRecordsOnly) {
  EXPECT_EQ(Write("/r", R"({"L": {"@odata.id": "/x"}, "M": [{"@odata.id": "/y"}]})"), 1U);
  EXPECT_EQ(Pending(),
            "list | &&/r/M | &&ObjectRef /y\n"
            "hash | /r | &&Array M &&/r/M | \n"
            "hash | /r | &&ObjectRef L /x | \n");
  EXPECT_EQ(Store->VisitedResourceMap.size(), 1U);
}

TEST_F(Writer, ALoneIdThatIsNoStringIsNoLinkAndFails) {
  for (const char* id : {"1", "null", "true", "{}", "[]", "1.5"}) {
    Store.emplace();
    Store->MergeMode = false;
    EXPECT_EQ(Write("/r", R"({"L": {"@odata.id": )" + std::string(id) + "}}"), 0U) << id;
    EXPECT_EQ(Pending(), "") << id;
  }
}

TEST_F(Writer, EmptyObjectsAndArraysAreRecordsOnly) {
  EXPECT_EQ(Write("/r", R"({"O": {}, "A": [], "L": [{}, []]})"), 1U);
  EXPECT_EQ(Pending(),
            "list | &&/r/L | &&Object &&/r/L/0\n"
            "list | &&/r/L | &&Array &&/r/L/1\n"
            "hash | /r | &&Array A &&/r/A | \n"
            "hash | /r | &&Array L &&/r/L | \n"
            "hash | /r | &&Object O &&/r/O | \n");
}

TEST_F(Writer, NestedArraysAreListsBelowTheirElement) {
  EXPECT_EQ(Write("/r", R"({"M": [1, 2, [3, [4]], {"A": 5}]})"), 1U);
  EXPECT_EQ(Pending(),
            "list | &&/r/M | 1\n"
            "list | &&/r/M | 2\n"
            "list | &&/r/M | &&Array &&/r/M/2\n"
            "list | &&/r/M | &&Object &&/r/M/3\n"
            "list | &&/r/M/2 | 3\n"
            "list | &&/r/M/2 | &&Array &&/r/M/2/1\n"
            "list | &&/r/M/2/1 | 4\n"
            "hash | &&/r/M/3 | A | 5\n"
            "hash | /r | &&Array M &&/r/M | \n");
}

TEST_F(Writer, ReservedStringsAreEscapedButNotQuoted) {
  EXPECT_EQ(Write("/r", R"({"&&ETag": "W/\"1\"", "&&OwnerName": "a\\b", "&&Async": true,
                            "&&DateTime": "", "&&Privileges": ["x"], "&&Validation": {"a": 1},
                            "&&File": "x.xml", "&&etag": "y"})"),
            1U);
  EXPECT_EQ(Pending(),
            "list | &&/r/&&Privileges | \"x\"\n"
            "hash | &&/r/&&Validation | a | 1\n"
            "hash | /r | &&Array &&Privileges &&/r/&&Privileges | \n"
            "hash | /r | &&Async | true\n"
            "hash | /r | &&DateTime | \n"
            "hash | /r | &&ETag | W/\\\"1\\\"\n"
            "hash | /r | &&File | \"x.xml\"\n"
            "hash | /r | &&Object &&Validation &&/r/&&Validation | \n"
            "hash | /r | &&OwnerName | a\\\\b\n"
            "hash | /r | &&etag | \"y\"\n");
}

TEST_F(Writer, ReservedNamesDoNotApplyToElements) {
  EXPECT_EQ(Write("/r", R"({"L": [{"&&ETag": "e"}, "&&ETag"]})"), 1U);
  EXPECT_EQ(Pending(),
            "list | &&/r/L | &&Object &&/r/L/0\n"
            "list | &&/r/L | \"&&ETag\"\n"
            "hash | &&/r/L/0 | &&ETag | e\n"
            "hash | /r | &&Array L &&/r/L | \n");
}

TEST_F(Writer, AValueWithoutATextFailsAndIsNamed) {
  const Document object = Parse("{}");
  EXPECT_EQ(Printed([&] { EXPECT_EQ(WriteScalarProperty(server(), "/r", "A", object.get()), 0U); }),
            "get value of /r/A fail");
  EXPECT_EQ(
      Printed([&] { EXPECT_EQ(WriteScalarProperty(server(), "&&/r/L", nullptr, nullptr), 0U); }),
      "get value of &&/r/L/(null) fail");
  EXPECT_EQ(Pending(), "");
}

TEST_F(Writer, WhatIsNoReservedStringIsLeftToTheScalars) {
  const Document object = Parse(R"({"&&ETag": 5, "A": "text"})");
  EXPECT_EQ(
      WriteReservedProperty(server(), "/r", "&&ETag", json_object_get(object.get(), "&&ETag")), 0U);
  EXPECT_EQ(WriteReservedProperty(server(), "/r", "A", json_object_get(object.get(), "A")), 0U);
  EXPECT_EQ(Pending(), "");
}

TEST_F(Writer, AReservedMemberWhosePutFailsIsWrittenOnceMoreAsAScalar) {
  (void)store.Run("SET | k | in the way");
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(PutHashField(server(), "k", {"f"}, "v"), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(Write("/r", R"({"&&ETag": "e"})"), 1U); }),
            "Some errors occur while creating hash data into database\n"
            "The data in database would be incorrect\n");
  EXPECT_EQ(Pending(), "hash | /r | &&ETag | \"e\"\n");  // quoted: no longer as a reserved member
}

TEST_F(Writer, AnObjectWhoseRecordCannotBeQueuedIsNotWritten) {
  (void)store.Run("SET | k | in the way");
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(PutHashField(server(), "k", {"f"}, "v"), 1U);
  (void)Printed([&] { EXPECT_EQ(Write("/r", R"({"O": {"A": 1}})"), 0U); });
  EXPECT_EQ(Pending(), "");
}

TEST_F(Writer, ALinkWhosePutFailsGoesOnAsAnObjectUnderItsId) {
  (void)store.Run("SET | k | in the way");
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(PutHashField(server(), "k", {"f"}, "v"), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(Write("/r", R"({"L": {"@odata.id": "/x"}})"), 1U); }),
            "Some errors occur while creating hash data into database\n"
            "The data in database would be incorrect\n");
  EXPECT_EQ(Pending(),
            "hash | /r | &&Object L /x | \n"
            "hash | /x | @odata.id | \"/x\"\n");
  EXPECT_TRUE(Store->VisitedResourceMap.at("/x"));
}

TEST_F(Writer, SendsNothingBeforeAFlush) {
  EXPECT_EQ(Write("/r", R"({"A": 1, "L": {"@odata.id": "/x"}, "O": {"B": [1]}})"), 1U);
  EXPECT_EQ(Sent(), "");
}

TEST_F(UpdateWriter, AMemberThatWasInlineAndIsNowALinkLosesItsSubtree) {
  (void)store.Run("HSET | /r | &&Object A &&/r/A | ");
  (void)store.Run("HSET | &&/r/A | x | 1");
  (void)store.Run("HSET | &&/r/A/B | y | 1");
  EXPECT_EQ(Write("/r", R"({"A": {"@odata.id": "/x"}})"), 1U);
  EXPECT_EQ(PendingRemovalsText(),
            "UNLINK | &&/r/A\n"
            "UNLINK | &&/r/A/B\n"
            "HDEL | /r | A\n"
            "HDEL | /r | &&Array A &&/r/A\n"
            "HDEL | /r | &&ObjectRef A &&/r/A\n"
            "HDEL | /r | &&Object A &&/r/A\n");
  EXPECT_EQ(Pending(), "hash | /r | &&ObjectRef A /x | \n");
  EXPECT_EQ(Sent(),
            "HEXISTS | /r | &&Object A &&/r/A\n--\n"
            "TYPE | &&/r/A\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n--\n"
            "SCAN | 0 | MATCH | &&/r/A/* | COUNT | 1000\n");
}

TEST_F(UpdateWriter, ALinkThatWasNotInlineCostsNoScan) {
  (void)store.Run("HSET | &&/r/A | x | 1");  // not referenced from /r
  EXPECT_EQ(Write("/r", R"({"A": {"@odata.id": "/x"}})"), 1U);
  EXPECT_EQ(Sent(),
            "HEXISTS | /r | &&Object A &&/r/A\n--\n"
            "TYPE | &&/r/A\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n");
}

TEST_F(UpdateWriter, ALinkBelowAPrunedPrefixCostsNoScan) {
  (void)store.Run("HSET | /r | &&Object A &&/r/A | ");
  Store->PrunedPrefixes.insert("&&/r");
  EXPECT_EQ(Write("/r", R"({"A": {"@odata.id": "/x"}})"), 1U);
  EXPECT_EQ(Sent(),
            "HEXISTS | /r | &&Object A &&/r/A\n--\n"
            "TYPE | &&/r/A\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n");
}

TEST_F(UpdateWriter, ALinkWhoseOldObjectCannotBeQueuedGoesOnAsAnObject) {
  (void)store.Run("HSET | /r | &&Object A &&/r/A | ");
  FillRemovalBatch(&store);
  (void)Printed([&] { EXPECT_EQ(Write("/r", R"({"A": {"@odata.id": "/x"}})"), 1U); });
  EXPECT_EQ(Pending(),
            "hash | /r | &&Object A /x | \n"
            "hash | /x | @odata.id | \"/x\"\n");
}

TEST_F(UpdateWriter, ALinkInAnArrayIsNotLookedUp) {
  EXPECT_EQ(Write("/r", R"({"L": [{"@odata.id": "/x"}]})"), 1U);
  EXPECT_EQ(Sent(),
            "TYPE | &&/r/L\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef L *\n--\n"
            "TYPE | &&/r/L/0\n");
  EXPECT_EQ(PendingRemovalsText(),
            "LREM | &&/r/L | 0 | 0\n"
            "LREM | &&/r/L | 0 | &&Array &&/r/L/0\n"
            "LREM | &&/r/L | 0 | &&ObjectRef &&/r/L/0\n"
            "LREM | &&/r/L | 0 | &&Object &&/r/L/0\n"
            "HDEL | /r | L\n"
            "HDEL | /r | &&Array L &&/r/L\n"
            "HDEL | /r | &&ObjectRef L &&/r/L\n"
            "HDEL | /r | &&Object L &&/r/L\n");
}

TEST_F(UpdateWriter, ReservedStringsAreWrittenWithoutPruning) {
  EXPECT_EQ(Write("/r", R"({"&&ETag": "e"})"), 1U);
  EXPECT_EQ(Sent(), "");
  EXPECT_EQ(PendingRemovalsText(), "");
}

TEST_F(UpdateWriter, OtherReservedScalarsArePruned) {
  EXPECT_EQ(Write("/r", R"({"&&Async": true})"), 1U);
  EXPECT_EQ(Pending(), "hash | /r | &&Async | true\n");
  EXPECT_EQ(Sent(), "TYPE | &&/r/&&Async\n--\nHSCAN | /r | 0 | MATCH | &&ObjectRef &&Async *\n");
}

TEST_F(UpdateWriter, PlainElementsOfAnArrayAreNotPruned) {
  EXPECT_EQ(Write("/r", R"({"L": [1, "a", null]})"), 1U);
  EXPECT_EQ(Sent(), "TYPE | &&/r/L\n--\nHSCAN | /r | 0 | MATCH | &&ObjectRef L *\n");
}

TEST_F(UpdateWriter, AnObjectWithAnIdIsPrunedAtThatKeyAlsoWhenItIsWrittenAlready) {
  EXPECT_EQ(Write("/a", R"({"O": {"@odata.id": "/a", "X": 1}})"), 1U);
  EXPECT_EQ(Pending(), "hash | /a | &&Object O /a | \n");
  EXPECT_EQ(Sent(), "TYPE | /a\n--\nHSCAN | /a | 0 | MATCH | &&ObjectRef O *\n");
}

TEST_F(UpdateWriter, AnObjectWithAnEmptyIdIsPrunedAtItsDerivedKeyAndWrittenAtTheEmptyKey) {
  EXPECT_EQ(Write("/r", R"({"O": {"@odata.id": "", "X": 1}})"), 1U);
  EXPECT_EQ(Pending(),
            "hash |  | @odata.id | \"\"\n"
            "hash |  | X | 1\n"
            "hash | /r | &&Object O  | \n");
  EXPECT_EQ(Sent(),
            "TYPE | &&/r/O\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef O *\n--\n"
            "TYPE | &&/@odata.id\n--\n"
            "HSCAN |  | 0 | MATCH | &&ObjectRef @odata.id *\n--\n"
            "TYPE | &&/X\n--\n"
            "HSCAN |  | 0 | MATCH | &&ObjectRef X *\n");
}

TEST_F(Writer, AReservedMemberWithoutAValueIsNotWritten) {
  EXPECT_EQ(WriteReservedProperty(server(), "/r", "&&ETag", nullptr), 0U);
  EXPECT_TRUE(Store->HashBatch.empty());
}

}  // namespace

}  // namespace ostrafel
