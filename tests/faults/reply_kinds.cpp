// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "faults/reply_kinds.h"

#include <array>
#include <cctype>
#include <cstddef>
#include <cstdio>
#include <limits>

#include "support/resp.h"

namespace {

using model::ArrayReply;
using model::ErrorReply;
using model::IntegerReply;
using model::NilReply;
using model::Reply;
using model::StatusReply;
using model::StringReply;

// The model knows one nil; the protocol has two.
constexpr const char* kNilArray = "*-1\r\n";

Kinds Whole(const std::vector<Reply>& replies) {
  Kinds kinds;
  for (const Reply& reply : replies) kinds.push_back({Format(reply)});
  return kinds;
}

Kinds Broken(const std::vector<std::string>& texts, bool closes) {
  Kinds kinds;
  for (const std::string& text : texts) {
    kinds.push_back({text, closes, ReplyKind::Nature::kBroken});
  }
  return kinds;
}

Kinds Join(const std::vector<Kinds>& parts) {
  Kinds all;
  for (const Kinds& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

// That many arrays of one element in each other, an empty one innermost.
std::string Nested(int depth) {
  std::string bytes;
  for (int i = 1; i < depth; ++i) bytes += "*1\r\n";
  return bytes + "*0\r\n";
}

}  // namespace

Kinds Exactly(const Reply& reply) { return Whole({reply}); }

Reply Page(const std::string& cursor, const std::vector<std::string>& items) {
  std::vector<Reply> found;
  for (const std::string& item : items) found.push_back(StringReply(item));
  return ArrayReply({StringReply(cursor), ArrayReply(found)});
}

Kinds Errors() {
  return Whole({
      ErrorReply("WRONGTYPE Operation against a key holding the wrong kind of value"),
      ErrorReply("OOM command not allowed when used memory > 'maxmemory'."),
      ErrorReply("READONLY You can't write against a read only replica."),
      ErrorReply("LOADING Redis is loading the dataset in memory"),
      ErrorReply("NOPERM this user has no permissions to run the 'hset' command"),
      ErrorReply("NOPERM this user has no permissions to access one of the keys used as arguments"),
      ErrorReply("NOAUTH Authentication required."),
      ErrorReply("MISCONF Redis is configured to save RDB snapshots, but it's currently unable to "
                 "persist to disk. Commands that may modify the data set are disabled, because "
                 "this instance is configured to report errors during writes if RDB snapshotting "
                 "fails (stop-writes-on-bgsave-error option). Please check the Redis logs for "
                 "details about the RDB error."),
      ErrorReply("MISCONF Errors writing to the AOF file: No space left on device"),
      ErrorReply("WRONGPASS invalid username-password pair or user is disabled."),
      ErrorReply("ERR AUTH <password> called without any password configured for the default user. "
                 "Are you sure your configuration is correct?"),
      ErrorReply("ERR unknown command 'HSET', with args beginning with: '/r' "),
      ErrorReply("%s%n%d"),
      ErrorReply(""),
  });
}

Kinds Statuses() {
  return Whole({StatusReply("OK"), StatusReply("ok"), StatusReply("OK "), StatusReply("QUEUED"),
                StatusReply("")});
}

Kinds Integers() {
  using Limits = std::numeric_limits<long long>;
  // hiredis takes the least number too.
  return Whole({IntegerReply(0), IntegerReply(1), IntegerReply(-1), IntegerReply(Limits::max()),
                IntegerReply(Limits::min())});
}

Kinds Nils() { return {{Format(NilReply())}, {kNilArray}}; }

Kinds Texts() {
  return Whole({StringReply(""), StringReply("OK"), StringReply("a\r\nb"),
                StringReply(std::string(1 << 20, 'x'))});
}

Kinds StringArrays() {
  return Whole({ArrayReply({}), ArrayReply({StringReply("x")}), ArrayReply({StringReply("")}),
                ArrayReply({StringReply("x"), StringReply("y")})});
}

Kinds StrangeArrays() {
  return Join({
      Whole({
          ArrayReply({IntegerReply(1)}),
          ArrayReply({IntegerReply(0), IntegerReply(0)}),
          ArrayReply({StatusReply("OK")}),
          ArrayReply({ErrorReply("ERR no")}),
          ArrayReply({NilReply()}),
          ArrayReply({NilReply(), NilReply()}),
          ArrayReply({ArrayReply({})}),
          ArrayReply({ArrayReply({StringReply("x")})}),
          ArrayReply({StringReply("x"), NilReply()}),
          ArrayReply({StringReply("x"), IntegerReply(1)}),
          ArrayReply(std::vector<Reply>(10000, IntegerReply(0))),
      }),
      {{std::string("*1\r\n") + kNilArray}, {Nested(8)}},
  });
}

Kinds BrokenPages() {
  return Join({
      Whole({
          ArrayReply({IntegerReply(0), ArrayReply({})}),
          ArrayReply({NilReply(), ArrayReply({})}),
          ArrayReply({StatusReply("0"), ArrayReply({})}),
          ArrayReply({ArrayReply({}), ArrayReply({})}),
          ArrayReply({ArrayReply({StringReply("x")}), StringReply("0")}),
          ArrayReply({StringReply("0"), IntegerReply(1)}),
          ArrayReply({StringReply("0"), NilReply()}),
          ArrayReply({StringReply("0"), StatusReply("OK")}),
          ArrayReply({StringReply("0"), ErrorReply("ERR no")}),
          ArrayReply({StringReply("0"), ArrayReply({IntegerReply(1)})}),
          ArrayReply({StringReply("0"), ArrayReply({NilReply(), NilReply()})}),
          ArrayReply({StringReply("0"), ArrayReply({ArrayReply({StringReply("x")})})}),
      }),
      {{std::string("*2\r\n$1\r\n0\r\n") + kNilArray}},
  });
}

Kinds PagesWithStrangeValues() {
  Kinds kinds;
  for (const Reply& value :
       {IntegerReply(1), NilReply(), StatusReply("OK"), ErrorReply("ERR no"), ArrayReply({})}) {
    kinds.push_back(
        {Format(ArrayReply({StringReply("0"), ArrayReply({StringReply("x"), value})}))});
  }
  return kinds;
}

Kinds Pages() {
  return Join({
      Whole({Page("0", {}), Page("0", {"x"}), Page("0", {"x", "y"}), Page("0", {"x", "y", "z"}),
             ArrayReply({StringReply("0"), ArrayReply({}), StringReply("x")})}),
      PagesWithStrangeValues(),
  });
}

Kinds BrokenStreams() {
  return Join({
      Broken(
          {
              "HTTP/1.1 400 Bad Request\r\n\r\n",
              "\r\n",
              "\n",
              " :1\r\n",
              std::string("\0\0\0\0", 4),
              "\xff\xfe",
              ":\r\n",
              ":one\r\n",
              ": 1\r\n",
              ":1.5\r\n",
              ":9223372036854775808\r\n",
              "$\r\n",
              "$x\r\n",
              "$-2\r\n",
              "$-9223372036854775808\r\n",
              "$99999999999999999999\r\n",
              "*\r\n",
              "*x\r\n",
              "*-2\r\n",
              "*2147483648\r\n",
              "*99999999999999999999\r\n",
              "*2\r\n$1\r\n0\r\n?\r\n",
              "*2\r\n$1\r\n0\r\n$-7\r\n",
              Nested(9),
              Nested(1000),
              "_\r\n",
              "#t\r\n",
              ",1.5\r\n",
              "%1\r\n+a\r\n+b\r\n",
          },
          false),
      Broken(
          {
              "",
              "+",
              "+OK",
              "+OK\r",
              "+OK\n",
              "-ERR",
              ":1",
              ":1\r",
              "$",
              "$2",
              "$2\r\n",
              "$2\r\nO",
              "$2\r\nOK",
              "$2\r\nOK\r",
              "$9999999999\r\nOK\r\n",
              "$9223372036854775807\r\nOK\r\n",
              "*",
              "*1\r\n",
              "*1\r\n$1\r\n",
              "*2\r\n$1\r\n0\r\n",
              "*2\r\n$1\r\n0\r\n*2\r\n$1\r\nx\r\n",
              "*100000\r\n$1\r\nx\r\n",
          },
          true),
  });
}

Kinds TwoStatuses() { return {{"+OK\r\n+OK\r\n", false, ReplyKind::Nature::kDouble}}; }

Kinds TwoIntegers() { return {{":1\r\n:1\r\n", false, ReplyKind::Nature::kDouble}}; }

Kinds EveryKind() {
  return Join({Errors(), Statuses(), Integers(), Nils(), Texts(), StringArrays(), StrangeArrays(),
               BrokenPages(), Pages(), BrokenStreams(), TwoStatuses(), TwoIntegers()});
}

std::string Describe(const ReplyKind& kind) {
  constexpr std::size_t kLongest = 80;
  std::string text = "\"";
  for (const char c : kind.bytes.substr(0, kLongest)) {
    if (c == '\r') {
      text += "\\r";
    } else if (c == '\n') {
      text += "\\n";
    } else if (std::isprint(static_cast<unsigned char>(c)) != 0) {
      text += c;
    } else {
      std::array<char, 5> hexadecimal = {};
      (void)std::snprintf(hexadecimal.data(), hexadecimal.size(), "\\x%02x",
                          static_cast<unsigned>(static_cast<unsigned char>(c)));
      text += hexadecimal.data();
    }
  }
  text += kind.bytes.size() > kLongest ? "\"..." : "\"";
  return kind.closes ? text + " and a close" : text;
}
