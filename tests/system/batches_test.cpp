// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// When the batches of a run are sent, in which order, and what a failed one leaves.
#include <set>
#include <string>

#include "system/system_fixture.h"

namespace {

const std::string kHashMessage =
    "Some errors occur while creating hash data into database\n"
    "The data in database would be incorrect\n";

class Batches : public SystemTest {
 protected:
  // A document of this many scalar members, "m0" onwards, followed by more members.
  static std::string Members(int count, const std::string& more) {
    std::string text = "{";
    for (int i = 0; i < count; ++i) text += "\"m" + std::to_string(i) + "\": 1, ";
    return text + more + "}";
  }

  // An array of this many numbers.
  static std::string Numbers(int count) {
    std::string text = "[";
    for (int i = 0; i < count; ++i) text += (i == 0 ? "" : ", ") + std::to_string(i);
    return text + "]";
  }

  // The flights that change the store after the old tree's removal: how many commands of each, and
  // the first one's name.
  std::string Changes() const {
    const std::set<std::string> questions = {"keys", "TYPE", "HSCAN"};
    std::string text;
    for (const model::Flight& flight : recording.flights) {
      const std::string& name = flight.commands.front().front();
      if (questions.count(name) != 0) continue;
      text += (text.empty() ? "" : ", ") + std::to_string(flight.commands.size()) + " " + name;
    }
    return text;
  }
};

TEST_F(Batches, OfTwoThousandItemsAreSentWhenTheNextItemComes) {
  const struct {
    const char* action;
    std::string document;
    const char* changes;
  } cases[] = {
      {"create", Members(1999, R"("last": 1)"), "2000 HSET"},
      {"create", Members(2000, R"("last": 1)"), "2000 HSET, 1 HSET"},
      // What fills the batch of lists leaves the fields waiting.
      {"create", R"({"A": 1, "L": )" + Numbers(2001) + "}", "2000 RPUSH, 2 HSET, 1 RPUSH"},
      // Removals go first, and four of each member count for themselves.
      {"update", R"({"A": 1, "L": )" + Numbers(2001) + "}", "8 HDEL, 2000 RPUSH, 2 HSET, 1 RPUSH"},
      {"update", Members(500, R"("last": 1)"), "2000 HDEL, 4 HDEL, 501 HSET"},
      // A field that is queued twice, here the record of O, is sent once and counted twice.
      {"create", Members(1996, R"("O": {"@odata.id": "/x", "y": 1}, "&&Object O /x": 1, "P": 1)"),
       "1999 HSET, 1 HSET"},
  };
  for (const auto& c : cases) {
    (void)store.Run("FLUSHALL");
    LoadDocument(c.action, c.document);
    EXPECT_EQ(Changes(), c.changes) << c.document.substr(0, 100);
  }
}

TEST_F(Batches, AFailedFlushInTheMiddleStopsANestedObject) {
  (void)store.Run("SET | other | in the way");
  const std::string file = tree.Write("a.json", R"({"A": 1, "O": {"@odata.id": "other", )" +
                                                    Members(2000, R"("last": 1})").substr(1));
  ExpectFailure({"create", file, "/r"},
                kHashMessage + ">>> Error occurs while parsing file " + file + "\n");
  // What sorts before the refused key and what comes after it in the same flush is stored.
  EXPECT_EQ(store.Dump(),
            "hash | /r | &&Object O other | \n"
            "hash | /r | A | 1\n"
            "string | other | in the way\n");
}

TEST_F(Batches, AFailedFlushInTheMiddleLosesOneMemberAndTheNextIsQueued) {
  (void)store.Run("SET | other | in the way");
  const std::string file =
      tree.Write("a.json", R"({"@odata.id": "other", )" + Members(2000, R"("last": 1)").substr(1));
  // The 2001st member fails with the flush; the 2002nd waits until the end, whose flush fails too.
  ExpectFailure({"create", file, "/r"},
                kHashMessage + kHashMessage + ">>> Fail to write rest of data into redis\n");
  EXPECT_EQ(Changes(), "2000 HSET, 1 HSET");
}

}  // namespace
