// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Every answer to SCAN and HSCAN, on the first page and on a later one, and every form of a cursor.
#include <string>
#include <utility>
#include <vector>

#include "faults/member_commands.h"
#include "faults/reply_table.h"
#include "support/program.h"
#include "support/resp.h"

namespace {

using model::ArrayReply;
using model::StringReply;

std::string Scan(const std::string& cursor) {
  return "SCAN | " + cursor + " | MATCH | &&/r/A/* | COUNT | 1000\n";
}

std::string Hscan(const std::string& cursor) {
  return "HSCAN | /r | " + cursor + " | MATCH | &&ObjectRef A *\n";
}

Kinds PageOf(const std::string& cursor, const std::vector<std::string>& items) {
  return Exactly(Page(cursor, items));
}

// Cursors that are answered, and what is sent on: the number at the beginning of the text, as a
// long, of which the next command takes as much as fits into an int.
std::vector<std::pair<std::string, std::string>> CursorsThatGoOn() {
  std::vector<std::pair<std::string, std::string>> cursors = {
      {"5", "5"},
      {"0017", "17"},
      {" 5", "5"},
      {"\t\r\n 5", "5"},
      {"5 ", "5"},
      {"5x", "5"},
      {"5.9", "5"},
      {"+5", "5"},
      {"-1", "-1"},
      {"1e3", "1"},
      {"2147483647", "2147483647"},
      {"-2147483648", "-2147483648"},
  };
  const bool is_wide = ProgramHas64Bits();
  const std::string most = "2147483647";
  const std::string least = "-2147483648";
  cursors.insert(cursors.end(), {
                                    {"2147483648", is_wide ? least : most},
                                    {"4294967295", is_wide ? "-1" : most},
                                    {"4294967297", is_wide ? "1" : most},
                                    {"-4294967297", is_wide ? "-1" : least},
                                    // The cursor is not 0, and the scan begins anew.
                                    {"4294967296", is_wide ? "0" : most},
                                    {"9223372036854775807", is_wide ? "-1" : most},
                                    {"18446744073709551615", is_wide ? "-1" : most},
                                    {"-9223372036854775809", is_wide ? "0" : least},
                                });
  return cursors;
}

// Cursors without a number count as 0.
std::vector<std::string> CursorsThatEnd() {
  return {"0", "00", "-0", "+0", "0x10", "", " ", "x", "x5", "--5", "+-5", "0 5", "\xff"};
}

TEST_F(WrongReplies, ToScan) {
  const std::string write = kRemoveFields + kWriteArray;
  const auto found = [&](const std::string& unlinks) {
    return Success(Hscan("0") + kUnlink + unlinks + write);
  };
  // The next page is the server's own, and holds a key.
  const auto goes_on = [&](const std::string& cursor, const std::string& unlinks) {
    return Success(Scan(cursor) + Hscan("0") + kUnlink + unlinks + "UNLINK | &&/r/A/B\n" + write);
  };
  // The array is the only member, so that it decides about the document.
  const Outcome failed = Failure(kFileFailed, "");
  // A key is sent up to its first NUL.
  const Outcome found_beginning = found("UNLINK | &&/r/A/B\n");

  std::vector<Row> table = {
      {{PageOf("0", {}), Exactly(ArrayReply({StringReply("0"), ArrayReply({}), StringReply("x")}))},
       found("")},
      {{PageOf("0", {"x"})}, found("UNLINK | x\n")},
      {{PageOf("0", {"x", "y"})}, found("UNLINK | x\nUNLINK | y\n")},
      {{PageOf("0", {"x", "y", "z"})}, found("UNLINK | x\nUNLINK | y\nUNLINK | z\n")},
      {{PageOf("0", {""})}, found("UNLINK | \n")},
      {{PageOf("0", {std::string("&&/r/A/B\0C", 10)})}, found_beginning},
      {{PageOf("7", {"x", "x"})}, goes_on("7", "UNLINK | x\nUNLINK | x\n")},
      {{Statuses(), Errors(), Integers(), Nils(), Texts()}, failed},
      {{StringArrays(), StrangeArrays(), BrokenPages(), PagesWithStrangeValues()}, failed},
      {{TwoStatuses(), TwoIntegers(), BrokenStreams()}, failed},
  };
  for (const auto& [cursor, sent] : CursorsThatGoOn()) {
    table.push_back({{PageOf(cursor, {"c"})}, goes_on(sent, "UNLINK | c\n")});
  }
  for (const std::string& cursor : CursorsThatEnd()) {
    table.push_back({{PageOf(cursor, {"c"})}, found("UNLINK | c\n")});
  }

  const model::Store store = {{"&&/r/A", {model::Hash{{"f", "v"}}}},
                              {"&&/r/A/B", {model::Hash{{"f", "v"}}}}};
  Check({"update", R"({"A": []})", store, kType, Scan("0")}, table);
}

TEST_F(WrongReplies, ToALaterScan) {
  const std::string write_tag = "HSET | /r | &&ETag | e\n";
  const std::string unlinks = kUnlink + "UNLINK | x\n";
  const auto found = [&](const std::string& more) {
    return Success(Hscan("0") + unlinks + more + kRemoveFields + kWriteArray + write_tag);
  };
  // The member fails, which the next one makes up for; what was found before is still removed.
  const Outcome forgiven = Success(unlinks + write_tag);
  const Outcome lost = Failure(std::string(kNoReply) + kNoReply + kRestNotWritten, "");
  // The second OK is taken for the answer to the first UNLINK.
  const Outcome shifted = Failure(std::string(kBadRemoval) + kRestNotWritten, unlinks);
  // The number for the second UNLINK is taken for the answer to HSET: a good one.
  const Outcome early = Success(unlinks + write_tag);

  Check(
      {"update",
       R"({"A": [], "&&ETag": "e"})",
       {{"&&/r/A", {model::Hash{{"f", "v"}}}}},
       kType + Scan("0"),
       Scan("5"),
       "",
       {{1, Format(Page("5", {"x"}))}}},
      {
          {{PageOf("0", {})}, found("")},
          {{PageOf("0", {"x"})}, found("UNLINK | x\n")},
          {{PageOf("0", {"x", "y"})}, found("UNLINK | x\nUNLINK | y\n")},
          {{PageOf("0", {"x", "y", "z"})}, found("UNLINK | x\nUNLINK | y\nUNLINK | z\n")},
          {{Exactly(ArrayReply({StringReply("0"), ArrayReply({}), StringReply("x")}))}, found("")},
          {{Statuses(), Errors(), Integers(), Nils(), Texts()}, forgiven},
          {{StringArrays(), StrangeArrays(), BrokenPages(), PagesWithStrangeValues()}, forgiven},
          {{TwoStatuses()}, shifted},
          {{TwoIntegers()}, early},
          {{BrokenStreams()}, lost},
      });
}

TEST_F(WrongReplies, ToHscanForAnArray) {
  const auto found = [&](const std::string& links) {
    return Success(kRemoveFields + links + kWriteArray);
  };
  // The next page is the server's own, and holds a link.
  const auto goes_on = [&](const std::string& cursor, const std::string& links) {
    return Success(Hscan(cursor) + kRemoveFields + links + "HDEL | /r | &&ObjectRef A /l\n" +
                   kWriteArray);
  };
  const Outcome failed = Failure(kFileFailed, "");

  std::vector<Row> table = {
      {{PageOf("0", {}), Exactly(ArrayReply({StringReply("0"), ArrayReply({}), StringReply("x")}))},
       found("")},
      // Fields and values alternate. A field without a value is still a field.
      {{PageOf("0", {"x"}), PageOf("0", {"x", "y"}), PagesWithStrangeValues()},
       found("HDEL | /r | x\n")},
      {{PageOf("0", {"x", "y", "z"})}, found("HDEL | /r | x\nHDEL | /r | z\n")},
      {{PageOf("0", {"", ""})}, found("HDEL | /r | \n")},
      {{PageOf("7", {"x", "", "x", ""})}, goes_on("7", "HDEL | /r | x\nHDEL | /r | x\n")},
      {{Statuses(), Errors(), Integers(), Nils(), Texts()}, failed},
      {{StringArrays(), StrangeArrays(), BrokenPages()}, failed},
      {{TwoStatuses(), TwoIntegers(), BrokenStreams()}, failed},
  };
  for (const auto& [cursor, sent] : CursorsThatGoOn()) {
    table.push_back({{PageOf(cursor, {"c", "v"})}, goes_on(sent, "HDEL | /r | c\n")});
  }
  for (const std::string& cursor : CursorsThatEnd()) {
    table.push_back({{PageOf(cursor, {"c", "v"})}, found("HDEL | /r | c\n")});
  }

  Check({"update",
         R"({"A": []})",
         {{"/r", {model::Hash{{"&&ObjectRef A /l", ""}}}}},
         kType,
         Hscan("0")},
        table);
}

TEST_F(WrongReplies, ToHscanForAScalar) {
  const std::string write = "HSET | /r | A | 1\n";
  const auto found = [&](const std::string& links) {
    return Success(kRemoveFields + links + write);
  };
  // A scalar is written even when its links cannot be learned; its other older shapes go.
  const Outcome written = Success(kRemoveFields + write);
  const Outcome lost =
      Failure(std::string(kNoReply) + kNoReply + kNoReply + kNoReply + kRestNotWritten, "");
  // The second OK is taken for the answer to the first HDEL.
  const Outcome shifted = Failure(std::string(kBadRemoval) + kRestNotWritten, kRemoveFields);
  // The number for the last HDEL is taken for the answer to HSET: a good one.
  const Outcome early = Success(kRemoveFields + write);

  Check({"update", R"({"A": 1})", {}, kType, Hscan("0")},
        {
            {{PageOf("0", {}),
              Exactly(ArrayReply({StringReply("0"), ArrayReply({}), StringReply("x")}))},
             found("")},
            {{PageOf("0", {"x"}), PageOf("0", {"x", "y"}), PagesWithStrangeValues()},
             found("HDEL | /r | x\n")},
            {{PageOf("0", {"x", "y", "z"})}, found("HDEL | /r | x\nHDEL | /r | z\n")},
            {{Statuses(), Errors(), Integers(), Nils(), Texts()}, written},
            {{StringArrays(), StrangeArrays(), BrokenPages()}, written},
            {{TwoStatuses()}, shifted},
            {{TwoIntegers()}, early},
            {{BrokenStreams()}, lost},
        });
}

}  // namespace
