// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Every answer to TYPE, LINDEX and HEXISTS: what an update asks about a member before it writes it.
#include <string>

#include "faults/member_commands.h"
#include "faults/reply_table.h"

namespace {

using model::StatusReply;
using model::StringReply;

// The kinds of these statuses.
Kinds AnyStatus(const std::vector<std::string>& texts) {
  Kinds kinds;
  for (const std::string& text : texts) kinds.push_back(Exactly(StatusReply(text)).front());
  return kinds;
}

// Statuses that are no more a type than the ones that say nothing: of the names that the program
// compares with, "none" is known by its first four letters and the others by all of them.
Kinds OtherTypes() {
  return AnyStatus({"string", "set", "zset", "stream", "None", "non", "HASH", "hashes", "lists",
                    "list ", " list"});
}

Kinds Nothing() { return AnyStatus({"none", "nonesuch"}); }

TEST_F(WrongReplies, ToTypeForAnArray) {
  const std::string write_tag = "HSET | /r | &&ETag | e\n";
  const std::string write = kRemoveFields + kWriteArray + write_tag;
  const Outcome nothing_stored = Success(kScanLinks + write);
  const Outcome stale = Success(kScanBelow + kScanLinks + kUnlink + write);
  const Outcome stale_list = Success(kFirstElement + kScanBelow + kScanLinks + kUnlink + write);
  // The last member decides about the document: without the array it is still a success.
  const Outcome forgiven = Success(write_tag);
  const Outcome lost = Failure(std::string(kNoReply) + kRestNotWritten, "");
  // OK is a type that is stale. The second OK is taken for the answer to SCAN, so that the array
  // fails, and the answer to SCAN for that to UNLINK.
  const Outcome shifted = Failure(std::string(kBadRemoval) + kRestNotWritten, kScanBelow + kUnlink);
  // The array fails. The second number is taken for the answer to HSET: a good one.
  const Outcome early = Success(write_tag);

  Check({"update", R"({"A": [], "&&ETag": "e"})", {}, "", kType},
        {
            {{Nothing()}, nothing_stored},
            {{AnyStatus({"list"})}, stale_list},
            {{AnyStatus({"hash"}), OtherTypes(), Statuses()}, stale},
            {{Errors(), Integers(), Nils(), Texts()}, forgiven},
            {{StringArrays(), StrangeArrays(), BrokenPages(), Pages()}, forgiven},
            {{TwoStatuses()}, shifted},
            {{TwoIntegers()}, early},
            {{BrokenStreams()}, lost},
        });
}

TEST_F(WrongReplies, ToTypeForAScalar) {
  const std::string write_scalar = "HSET | /r | A | 1\n";
  const std::string write = kRemoveFields + write_scalar;
  const Outcome nothing_stored = Success(kScanLinks + write);
  // A scalar has nothing at the key: even a hash there is stale.
  const Outcome stale = Success(kScanBelow + kScanLinks + kUnlink + write);
  const Outcome stale_list = Success(kFirstElement + kScanBelow + kScanLinks + kUnlink + write);
  // A scalar is written even when its older shape cannot be learned.
  const Outcome written = Success(write_scalar);
  const Outcome lost = Failure(std::string(kNoReply) + kRestNotWritten, "");
  // As for an array.
  const Outcome shifted = Failure(std::string(kBadRemoval) + kRestNotWritten, kScanBelow + kUnlink);
  const Outcome early = Success(write_scalar);

  Check({"update", R"({"A": 1})", {}, "", kType},
        {
            {{Nothing()}, nothing_stored},
            {{AnyStatus({"list"})}, stale_list},
            {{AnyStatus({"hash"}), OtherTypes(), Statuses()}, stale},
            {{Errors(), Integers(), Nils(), Texts()}, written},
            {{StringArrays(), StrangeArrays(), BrokenPages(), Pages()}, written},
            {{TwoStatuses()}, shifted},
            {{TwoIntegers()}, early},
            {{BrokenStreams()}, lost},
        });
}

TEST_F(WrongReplies, ToTypeForAnObject) {
  const std::string write = kRemoveFields + "HSET | /r | &&Object A &&/r/A | \n";
  // A hash stays, and the object is merged into it.
  const Outcome kept = Success(kScanLinks + write);
  const Outcome stale = Success(kScanBelow + kScanLinks + kUnlink + write);
  const Outcome stale_list = Success(kFirstElement + kScanBelow + kScanLinks + kUnlink + write);
  const Outcome failed = Failure(kFileFailed, "");

  Check({"update", R"({"A": {}})", {}, "", kType},
        {
            {{Nothing(), AnyStatus({"hash"})}, kept},
            {{AnyStatus({"list"})}, stale_list},
            {{OtherTypes(), Statuses()}, stale},
            {{Errors(), Integers(), Nils(), Texts()}, failed},
            {{StringArrays(), StrangeArrays(), BrokenPages(), Pages()}, failed},
            {{TwoStatuses(), TwoIntegers()}, failed},
            {{BrokenStreams()}, failed},
        });
}

TEST_F(WrongReplies, ToTypeForALink) {
  const std::string type_of_target = "TYPE | /x\n";
  const std::string write = kRemoveFields + "HSET | /r | &&ObjectRef A /x | \n";
  const Outcome nothing_stale = Success(kScanLinks + write);
  const Outcome stale = Success(kScanBelow + kScanLinks + kUnlink + write);
  const Outcome stale_list = Success(kFirstElement + kScanBelow + kScanLinks + kUnlink + write);
  // A link that cannot be written as one is written as an object at the key that it names.
  const Outcome as_object = Success(type_of_target + kScanLinks +
                                    "TYPE | &&/x/@odata.id\n"
                                    "HSCAN | /x | 0 | MATCH | &&ObjectRef @odata.id *\n"
                                    "HDEL | /r | A\n"
                                    "HDEL | /r | &&Array A /x\n"
                                    "HDEL | /r | &&ObjectRef A /x\n"
                                    "HDEL | /r | &&Object A /x\n"
                                    "HDEL | /x | @odata.id\n"
                                    "HDEL | /x | &&Array @odata.id &&/x/@odata.id\n"
                                    "HDEL | /x | &&ObjectRef @odata.id &&/x/@odata.id\n"
                                    "HDEL | /x | &&Object @odata.id &&/x/@odata.id\n"
                                    "HSET | /r | &&Object A /x | \n"
                                    "HSET | /x | @odata.id | \"/x\"\n");
  const Outcome lost = Failure(kFileFailed, "");
  // The second OK is no answer to SCAN, nor is the answer to SCAN one to the TYPE of the object.
  const Outcome shifted = Failure(kFileFailed, kScanBelow + type_of_target);
  // The second number is taken for the answer to the TYPE of the object, which stays unsent.
  const Outcome unsent = Failure(kFileFailed, "");

  Check(
      {"update", R"({"A": {"@odata.id": "/x"}})", {}, "HEXISTS | /r | &&Object A &&/r/A\n", kType},
      {
          {{Nothing(), AnyStatus({"hash"})}, nothing_stale},
          {{AnyStatus({"list"})}, stale_list},
          {{OtherTypes(), Statuses()}, stale},
          {{Errors(), Integers(), Nils(), Texts()}, as_object},
          {{StringArrays(), StrangeArrays(), BrokenPages(), Pages()}, as_object},
          {{TwoStatuses()}, shifted},
          {{TwoIntegers()}, unsent},
          {{BrokenStreams()}, lost},
      });
}

TEST_F(WrongReplies, ToLindex) {
  const std::string write = kScanLinks + kUnlink + kRemoveFields + kWriteArray;
  // Only a string tells that a list holds plain values and has nothing below it.
  const Outcome plain = Success(write);
  const Outcome scanned = Success(kScanBelow + write);
  // Nothing answers the SCAN that follows.
  const Outcome lost = Failure(kFileFailed, "");
  // The second reply is no answer to that SCAN.
  const Outcome shifted = Failure(kFileFailed, "");
  Kinds markers_alone;
  Kinds records;
  for (const std::string marker : {"&&Array ", "&&Object ", "&&ObjectRef "}) {
    markers_alone.push_back(Exactly(StringReply(marker)).front());
    records.push_back(Exactly(StringReply(marker + "k")).front());
  }

  Check({"update", R"({"A": []})", {{"&&/r/A", {model::List{"v"}}}}, kType, kFirstElement},
        {
            {{Texts(), markers_alone}, plain},
            {{records}, scanned},
            {{Statuses(), Errors(), Integers(), Nils()}, scanned},
            {{StringArrays(), StrangeArrays(), BrokenPages(), Pages()}, scanned},
            {{TwoStatuses(), TwoIntegers()}, shifted},
            {{BrokenStreams()}, lost},
        });
}

TEST_F(WrongReplies, ToHexists) {
  const std::string write = kRemoveFields + "HSET | /r | &&ObjectRef A /x | \n";
  const std::string type_of_target = "TYPE | /x\n";
  const Outcome was_inline = Success(kType + kScanLinks + kScanBelow + kUnlink + write);
  // Anything but the number 1 means that no object was stored here.
  const Outcome was_not = Success(kType + kScanLinks + write);
  // Neither the TYPE for the link gets an answer nor that for the object which it would become.
  const Outcome lost = Failure(kFileFailed, "");
  // TYPE takes the second OK for a type that is stale, SCAN the answer to TYPE for its own and
  // fails, and the TYPE for the object takes the answer to SCAN, and fails too, unsent.
  const Outcome shifted_status = Failure(kFileFailed, kType + kScanBelow);
  // TYPE cannot use the second number. That for the object takes the "none" for the link, and the
  // HSCAN after it, unsent, the "none" for the object, and fails.
  const Outcome shifted_integer = Failure(kFileFailed, kType + type_of_target);

  Check({"update", R"({"A": {"@odata.id": "/x"}})", {}, "", "HEXISTS | /r | &&Object A &&/r/A\n"},
        {
            {{Exactly(model::IntegerReply(1))}, was_inline},
            {{Integers(), Statuses(), Errors(), Nils(), Texts()}, was_not},
            {{StringArrays(), StrangeArrays(), BrokenPages(), Pages()}, was_not},
            {{TwoStatuses()}, shifted_status},
            {{TwoIntegers()}, shifted_integer},
            {{BrokenStreams()}, lost},
        });
}

}  // namespace
