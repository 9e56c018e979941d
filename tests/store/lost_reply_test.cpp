// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Replies that never come, and values that are not there.
#include <gtest/gtest.h>

#include <string>

#include "store/command_batches.h"
#include "store/pruning.h"
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
  EXPECT_EQ(Printed([&] { EXPECT_EQ(IsPlainList(context(), "l"), 0U); }), "");
}

TEST_F(LostReply, OfAHexistsCountsAsNotInline) {
  (void)store.Run("HSET | /r | &&Object A &&/r/A | ");
  recorder.CutAfter(0, 0);
  const Document link = Parse(R"({"@odata.id": "/x"})");
  EXPECT_EQ(Printed([&] {
              EXPECT_EQ(WriteObjectReference(context(), "/r", "A", link.get(), false), 0U);
            }),
            "");
  EXPECT_EQ(PendingRemovalsText(), "");
  EXPECT_TRUE(HashBatch.empty());
}

// A connection that does not wait reads "no reply yet" without an error.
TEST_F(LostReply, ThatIsReadAsNothingIsBad) {
  const StoreConnection impatient(redisConnectUnixNonBlock(ServerSocket().c_str()));
  ASSERT_NE(impatient, nullptr);
  ASSERT_EQ(PutHashField(impatient.get(), "k", "f", "v"), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushHashBatch(impatient.get()), 0U); }),
            "Some errors occur while creating hash data into database\n"
            "The data in database would be incorrect\n");
  ASSERT_EQ(PutListItem(impatient.get(), "l", "v"), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushListBatch(impatient.get()), 0U); }),
            "Some errors occur while creating list data into database\n"
            "The data in database would be incorrect\n");
  EXPECT_TRUE(HashBatch.empty());
}

TEST_F(LostReply, AReservedMemberWithoutAValueIsNotWritten) {
  EXPECT_EQ(WriteReservedProperty(context(), "/r", "&&ETag", nullptr), 0U);
  EXPECT_TRUE(HashBatch.empty());
}

}  // namespace

}  // namespace ostrafel
