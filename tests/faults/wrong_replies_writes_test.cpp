// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Every answer to UNLINK, LREM, HDEL, HSET and RPUSH: the pipelines at the end of a run. The
// command in question is always the first of its pipeline, whose other commands are on their way
// already.
#include <limits>
#include <string>

#include "faults/member_commands.h"
#include "faults/reply_table.h"
#include "support/repeated.h"

namespace {

using model::IntegerReply;

TEST_F(WrongReplies, ToUnlink) {
  // However many were removed.
  const Outcome good = Success(kRemoveFields + kWriteArray);
  // One bad answer, and no command after the pipeline is sent.
  const Outcome bad = Failure(std::string(kBadRemoval) + kRestNotWritten, kRemoveFields);
  // Every reply of the pipeline is missed.
  const Outcome lost = Failure(Repeated(kNoReply, 5) + kRestNotWritten, kRemoveFields);
  // The number for the last HDEL is taken for the answer to HSET: a good one.
  const Outcome shifted = Success(kRemoveFields + kWriteArray);

  Check({"update",
         R"({"A": []})",
         {{"&&/r/A", {model::List{"v"}}}},
         kType + kFirstElement + kScanLinks,
         kUnlink},
        {
            {{Integers()}, good},
            {{Statuses(), Errors(), Nils(), Texts()}, bad},
            {{StringArrays(), StrangeArrays(), BrokenPages(), Pages(), TwoStatuses()}, bad},
            {{TwoIntegers()}, shifted},
            {{BrokenStreams()}, lost},
        });
}

TEST_F(WrongReplies, ToLrem) {
  const std::string removals =
      "LREM | &&/r/A | 0 | &&Array &&/r/A/0\n"
      "LREM | &&/r/A | 0 | &&ObjectRef &&/r/A/0\n"
      "LREM | &&/r/A | 0 | &&Object &&/r/A/0\n" +
      kRemoveFields;
  const std::string write = kWriteArray + "RPUSH | &&/r/A | &&Object &&/r/A/0\n";
  const Outcome good = Success(removals + write);
  const Outcome bad = Failure(std::string(kBadRemoval) + kRestNotWritten, removals);
  const Outcome lost = Failure(Repeated(kNoReply, 8) + kRestNotWritten, removals);
  // HSET takes the number for the last HDEL, and RPUSH the 1 for HSET: good answers, both.
  const Outcome shifted = Success(removals + write);

  Check({"update",
         R"({"A": [{}]})",
         {},
         kType + kScanLinks + "TYPE | &&/r/A/0\n",
         "LREM | &&/r/A | 0 | 0\n"},
        {
            {{Integers()}, good},
            {{Statuses(), Errors(), Nils(), Texts()}, bad},
            {{StringArrays(), StrangeArrays(), BrokenPages(), Pages(), TwoStatuses()}, bad},
            {{TwoIntegers()}, shifted},
            {{BrokenStreams()}, lost},
        });
}

TEST_F(WrongReplies, ToHdel) {
  const std::string write = "HSET | /r | A | 1\n";
  const Outcome good = Success(kRemoveRecords + write);
  const Outcome bad = Failure(std::string(kBadRemoval) + kRestNotWritten, kRemoveRecords);
  const Outcome lost = Failure(Repeated(kNoReply, 4) + kRestNotWritten, kRemoveRecords);
  // The number for the last HDEL is taken for the answer to HSET: a good one.
  const Outcome shifted = Success(kRemoveRecords + write);

  Check({"update", R"({"A": 1})", {}, kType + kScanLinks, kRemoveScalar},
        {
            {{Integers()}, good},
            {{Statuses(), Errors(), Nils(), Texts()}, bad},
            {{StringArrays(), StrangeArrays(), BrokenPages(), Pages(), TwoStatuses()}, bad},
            {{TwoIntegers()}, shifted},
            {{BrokenStreams()}, lost},
        });
}

// What a create of {"A": 1, "B": [2, 3]} into an empty store sends before it writes.
const std::string kRemoveTree = "keys | /r\nkeys | /r/*\nkeys | &&/r/*\n";

TEST_F(WrongReplies, ToHset) {
  const std::string other_field = "HSET | /r | A | 1\n";
  const std::string lists = "RPUSH | &&/r/B | 2\nRPUSH | &&/r/B | 3\n";
  // Whether the field is new (1) or replaced (0).
  const Outcome good = Success(other_field + lists);
  const Outcome bad = Failure(std::string(kBadHash) + kRestNotWritten, other_field);
  const Outcome lost = Failure(Repeated(kNoReply, 2) + kRestNotWritten, other_field);
  // The first RPUSH takes the 1 for the second HSET, and the second RPUSH that for the first.
  const Outcome shifted = Success(other_field + lists);

  Check(
      {"create", R"({"A": 1, "B": [2, 3]})", {}, kRemoveTree, "HSET | /r | &&Array B &&/r/B | \n"},
      {
          {{Integers()}, good},
          {{Statuses(), Errors(), Nils(), Texts()}, bad},
          {{StringArrays(), StrangeArrays(), BrokenPages(), Pages(), TwoStatuses()}, bad},
          {{TwoIntegers()}, shifted},
          {{BrokenStreams()}, lost},
      });
}

TEST_F(WrongReplies, ToRpush) {
  const std::string other_element = "RPUSH | &&/r/B | 3\n";
  const Outcome good = Success(other_element);
  // A list that something was pushed to holds something: 0 and less are no lengths.
  const Outcome bad = Failure(std::string(kBadList) + kRestNotWritten, other_element);
  const Outcome lost = Failure(Repeated(kNoReply, 2) + kRestNotWritten, other_element);
  const long long most = std::numeric_limits<long long>::max();

  Check({"create",
         R"({"A": 1, "B": [2, 3]})",
         {},
         kRemoveTree + "HSET | /r | &&Array B &&/r/B | \nHSET | /r | A | 1\n",
         "RPUSH | &&/r/B | 2\n"},
        {
            {{Exactly(IntegerReply(1)), Exactly(IntegerReply(most))}, good},
            // Nobody asks for the reply that is left over.
            {{TwoIntegers()}, good},
            {{Integers(), Statuses(), Errors(), Nils(), Texts()}, bad},
            {{StringArrays(), StrangeArrays(), BrokenPages(), Pages(), TwoStatuses()}, bad},
            {{BrokenStreams()}, lost},
        });
}

}  // namespace
