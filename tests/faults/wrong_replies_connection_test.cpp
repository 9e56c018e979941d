// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Every answer to AUTH, KEYS and DEL: what comes before the first file is read.
#include <string>

#include "faults/reply_table.h"

namespace {

using model::ArrayReply;
using model::StatusReply;
using model::StringReply;

TEST_F(WrongReplies, ToAuth) {
  const std::string run = "keys | /r\nkeys | /r/*\nkeys | &&/r/*\nHSET | /r | A | 1\n";
  const Outcome authenticated = Success(run);
  // Nothing else than "OK", to the letter, lets the program in.
  const Outcome refused = Failure(kNoConnection, "");
  // The second OK is taken for the answer to the first KEYS, which is no array and passed over, and
  // so on; in the end the empty array for the last KEYS is taken for the answer to HSET.
  const Outcome shifted = Failure(std::string(kBadHash) + kRestNotWritten,
                                  "keys | /r\nkeys | /r/*\nkeys | &&/r/*\nHSET | /r | A | 1\n");

  Check({"create", R"({"A": 1})", {}, "", "AUTH | secret\n", "secret"},
        {
            {{Exactly(StatusReply("OK"))}, authenticated},
            {{TwoStatuses()}, shifted},
            {{Statuses(), Errors(), Integers(), Nils(), Texts()}, refused},
            {{StringArrays(), StrangeArrays(), BrokenPages(), Pages()}, refused},
            {{TwoIntegers(), BrokenStreams()}, refused},
        });
}

TEST_F(WrongReplies, ToKeys) {
  const std::string rest = "keys | /r/*\nkeys | &&/r/*\nHSET | /r | A | 1\n";
  // A pattern whose keys cannot be learned is no failure: its keys stay, and the run goes on.
  const Outcome passed_over = Success(rest);
  const Outcome deletes_x = Success("del | x\n" + rest);
  const Outcome deletes_nameless = Success("del | \n" + rest);
  const Outcome deletes_x_and_y = Success("del | x\ndel | y\n" + rest);
  // A key is sent up to its first NUL.
  const Outcome deletes_beginning = Success("del | /r\n" + rest);
  // No KEYS gets an answer any more, and none is missed; the HSET is.
  const Outcome lost = Failure(std::string(kNoReply) + kRestNotWritten, "");
  // The second KEYS gets the second reply. The third gets the answer to the second, and HSET that
  // to the third: an empty array.
  const Outcome shifted = Failure(std::string(kBadHash) + kRestNotWritten, rest);

  Check({"create", R"({"A": 1})", {{"/r", {model::Hash{{"B", "2"}}}}}, "", "keys | /r\n"},
        {
            {{Exactly(ArrayReply({StringReply("x")}))}, deletes_x},
            {{Exactly(ArrayReply({StringReply("")}))}, deletes_nameless},
            {{Exactly(ArrayReply({StringReply("x"), StringReply("y")}))}, deletes_x_and_y},
            {{Exactly(ArrayReply({StringReply(std::string("/r\0/a", 5))}))}, deletes_beginning},
            {{Exactly(ArrayReply({}))}, passed_over},
            {{Statuses(), Errors(), Integers(), Nils(), Texts()}, passed_over},
            // Not even the strings among other items are deleted.
            {{StrangeArrays(), BrokenPages(), Pages()}, passed_over},
            {{TwoStatuses(), TwoIntegers()}, shifted},
            {{BrokenStreams()}, lost},
        });
}

TEST_F(WrongReplies, ToDel) {
  const model::Store store = {{"/r/a", {"old"}}, {"/r/b", {"old"}}};
  // Whether a key was there, or could be deleted, does not matter.
  const Outcome ignored = Success("del | /r/b\nkeys | &&/r/*\nHSET | /r | A | 1\n");
  const Outcome lost = Failure(std::string(kNoReply) + kTreeNotRemoved, "del | /r/b\n");
  // The second del takes the second reply, the third KEYS the number meant for the second del, and
  // HSET the empty array meant for the third KEYS.
  const Outcome shifted = Failure(std::string(kBadHash) + kRestNotWritten,
                                  "del | /r/b\nkeys | &&/r/*\nHSET | /r | A | 1\n");

  Check({"create", R"({"A": 1})", store, "keys | /r\nkeys | /r/*\n", "del | /r/a\n"},
        {
            {{Statuses(), Errors(), Integers(), Nils(), Texts()}, ignored},
            {{StringArrays(), StrangeArrays(), BrokenPages(), Pages()}, ignored},
            {{TwoStatuses(), TwoIntegers()}, shifted},
            {{BrokenStreams()}, lost},
        });
}

}  // namespace
