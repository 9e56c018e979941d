// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What a server can answer to a command, right and wrong, as bytes.
#ifndef OSTRAFEL_TESTS_FAULTS_REPLY_KINDS_H_
#define OSTRAFEL_TESTS_FAULTS_REPLY_KINDS_H_

#include <string>
#include <vector>

#include "model/reply.h"

/// One answer.
struct ReplyKind {
  enum class Nature {
    kWhole,   ///< One reply of the protocol.
    kBroken,  ///< The connection is dead from here on.
    kDouble   ///< Two replies.
  };

  std::string bytes;
  bool closes = false;  ///< The server closes the connection after the bytes.
  Nature nature = Nature::kWhole;
};

using Kinds = std::vector<ReplyKind>;

/// The kinds that consist of this one reply.
Kinds Exactly(const model::Reply& reply);

/// The answer to a SCAN or HSCAN: the next cursor and what was found.
model::Reply Page(const std::string& cursor, const std::vector<std::string>& items);

/// Error replies: the usual ones with the texts of Redis 7, one that nobody knows, and an empty
/// one.
Kinds Errors();

/// Status replies that say nothing in particular to any command but AUTH, which is answered OK.
Kinds Statuses();

/// 0, 1, -1, and both ends of the range.
Kinds Integers();

/// Nothing: as a string and as an array.
Kinds Nils();

/// Strings: empty, short, with line ends, and one of a mebibyte.
Kinds Texts();

/// Arrays that hold strings only: empty, with one element, with several, with an empty one.
Kinds StringArrays();

/// Arrays that no command of this program is ever answered: with integers, statuses, errors,
/// nothing or arrays in them, long ones, and ones nested as deep as hiredis takes them.
Kinds StrangeArrays();

/// Arrays that begin like the answer to SCAN and go on otherwise: a cursor that is no string, a
/// second element that is no array, items of which the first is no string.
Kinds BrokenPages();

/// Answers with cursor 0 and a field "x" whose value is no string: whole ones to HSCAN, of which
/// only the names count, and broken ones to SCAN.
Kinds PagesWithStrangeValues();

/// Whole answers to SCAN and HSCAN with cursor 0: nothing found, one item, two, three, one with an
/// element more than it should have, and PagesWithStrangeValues.
Kinds Pages();

/// Bytes that end the connection: no Redis protocol at all, lengths and numbers that are none,
/// arrays nested too deep, types of a newer protocol, or a close before the reply is whole. hiredis
/// drops the connection at these, so that whatever follows fails as with a cut line.
Kinds BrokenStreams();

/// Two whole replies where one is due. hiredis takes the second for the answer to the next command
/// (and does not even send that, when it is a question); from there on every answer is taken for
/// that of the command after.
Kinds TwoStatuses();
Kinds TwoIntegers();

/// All of the above.
Kinds EveryKind();

/// The kind for a failure message: its bytes, escaped, shortened when long.
std::string Describe(const ReplyKind& kind);

#endif  // OSTRAFEL_TESTS_FAULTS_REPLY_KINDS_H_
