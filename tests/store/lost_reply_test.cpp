// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Replies that never come, and values that are not there.
#include <gtest/gtest.h>

#include <string>

#include "store/pruning.h"
#include "store/queue.h"
#include "store/resource_writer.h"
#include "store/store_fixture.h"
#include "store/store_state.h"
#include "support/sandbox.h"

namespace ostrafel {

namespace {

class LostReply : public StoreTest {};

TEST_F(LostReply, OfALindexIsNoPlainList) {
  (void)store.Run("RPUSH | l | 1");
  recorder.CutAfter(0, 0);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(IsPlainList(server(), "l"), 0U); }), "");
}

TEST_F(LostReply, OfAHexistsCountsAsNotInline) {
  (void)store.Run("HSET | /r | &&Object A &&/r/A | ");
  recorder.CutAfter(0, 0);
  const Document link = Parse(R"({"@odata.id": "/x"})");
  EXPECT_EQ(Printed([&] {
              EXPECT_EQ(WriteObjectReference(server(), "/r", "A", link.get(), ParentKind::kHash),
                        0U);
            }),
            "");
  EXPECT_EQ(PendingRemovalsText(), "");
  EXPECT_TRUE(Store->HashBatch.empty());
}

// A connection that does not wait reads "no reply yet" without an error.
TEST_F(LostReply, ThatIsReadAsNothingIsBad) {
  Server impatient = {StoreConnection(redisConnectUnixNonBlock(ServerSocket().c_str()))};
  ASSERT_NE(impatient.connection, nullptr);
  ASSERT_EQ(PutHashField(&impatient, "k", {"f"}, "v"), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushHashBatch(&impatient), 0U); }),
            "Some errors occur while creating hash data into database\n"
            "The data in database would be incorrect\n");
  ASSERT_EQ(PutListItem(&impatient, "l", {"v"}), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushListBatch(&impatient), 0U); }),
            "Some errors occur while creating list data into database\n"
            "The data in database would be incorrect\n");
  EXPECT_TRUE(Store->HashBatch.empty());
}

TEST_F(LostReply, AReservedMemberWithoutAValueIsNotWritten) {
  EXPECT_EQ(WriteReservedProperty(server(), "/r", "&&ETag", nullptr), 0U);
  EXPECT_TRUE(Store->HashBatch.empty());
}

}  // namespace

}  // namespace ostrafel
