// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Stores whose documents would be very large, or take very long, if each record were written or
// looked at for itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <string>

#include "export/document.h"
#include "export/memory_export.h"

namespace ostrafel {

namespace {

// An object of its own key that stands in an array very often.
Server WithArrayOf(Hash object, std::size_t times) {
  Server server;
  object["@odata.id"] = "\"/x\"";
  server.keys["/x"] = std::move(object);
  server.keys["/r"] = Hash{{"&&Array A &&/r/A", ""}};
  server.keys["&&/r/A"] = List(times, "&&Object /x");
  return server;
}

// Exports /r, in a time of which the square of what the store holds would take many times as much.
MemoryExport ExportSoon(const Server& server) {
  const std::clock_t begin = std::clock();
  MemoryExport made = ExportOf(server, "/r");
  EXPECT_LT((std::clock() - begin) / CLOCKS_PER_SEC, 20);
  return made;
}

std::size_t CountOf(const MemoryExport& made, const std::string& reason) {
  std::size_t count = 0;
  for (const auto& [key, records] : made.losses.ByKey()) {
    count += static_cast<std::size_t>(
        std::count_if(records.begin(), records.end(),
                      [&](const LostRecord& record) { return record.reason == reason; }));
  }
  return count;
}

TEST(LargeDocument, LooksAtALargeObjectOnceThoughItStandsVeryOften) {
  Hash large;
  for (int i = 0; i < 20000; ++i) large["m" + std::to_string(i)] = "1";
  const MemoryExport made = ExportSoon(WithArrayOf(large, 20000));
  EXPECT_EQ(TextsOf(made.losses), std::vector<std::string>{});
}

TEST(LargeDocument, LooksOnceAtAnObjectOfWhichJsonCanHaveOnlyTheKey) {
  // The name that the id's record ends with in this reading is not text.
  Server server = WithArrayOf({{"&&Object @odata.id b c", ""}}, 20000);
  server.keys["b c"] = Hash{{"@odata.id", "\"b c\""}, {"v", "1"}};
  Hash& object = std::get<Hash>(server.keys["/x"]);
  for (int i = 0; i < 20000; ++i) object["\xff" + std::to_string(i)] = "1";
  const MemoryExport made = ExportSoon(server);
  EXPECT_EQ(CountOf(made, "JSON can have nothing of its hash but the key"), 20000U);
}

TEST(LargeDocument, RepeatsNoLargeMemberWhereThereIsASmallOne) {
  const std::string blob = '"' + std::string(1000000, 'b') + '"';
  const MemoryExport made = ExportSoon(WithArrayOf({{"A", blob}, {"b", "1"}}, 1000));
  EXPECT_EQ(TextsOf(made.losses), std::vector<std::string>{});
  EXPECT_LT(made.documents.at("").size(), 1500000U);
}

TEST(LargeDocument, RepeatsNoLargeMemberThoughThereIsNoOther) {
  const std::string large(1000000, 'b');
  for (const Hash& object :
       {Hash{{"Blob", '"' + large + '"'}}, Hash{{large, "1"}}, Hash{{large, '"' + large + '"'}}}) {
    const MemoryExport made = ExportSoon(WithArrayOf(object, 1000));
    EXPECT_EQ(TextsOf(made.losses), std::vector<std::string>{});
    EXPECT_LT(made.documents.at("").size(), 2500000U);
  }
}

TEST(LargeDocument, MakesNoKeyOfMegabytesForEachRecord) {
  const std::string key = "/r/" + std::string(8000000, 'k');
  Server server;
  Hash fields;
  for (int i = 0; i < 20000; ++i) fields["&&Array " + std::to_string(i) + " &&a"] = "";
  server.keys[key] = std::move(fields);
  server.keys["/r"] = Hash{{"&&Array A &&/r/A", ""}};
  server.keys["&&/r/A"] = List(20000, "&&Object a");
  const MemoryExport made = ExportSoon(server);
  EXPECT_NE(made.losses.size(), 0U);
}

}  // namespace

}  // namespace ostrafel
