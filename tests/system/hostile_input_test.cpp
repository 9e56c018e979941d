// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Names, texts and numbers that a document may hold and that something on the way could take for
// more than data.
#include <string>
#include <utility>
#include <vector>

#include "system/system_fixture.h"

namespace {

// A string as the document holds it and as the store does.
struct Hostile {
  std::string json;    // between the quotes
  std::string text;    // of a name: as it is
  std::string stored;  // of a value: between the quotes
};

Hostile Plain(const std::string& text) { return {text, text, text}; }

// None is empty or holds a slash: what becomes of those is told one by one.
const std::vector<Hostile> kHostileTexts = {
    Plain(" "),
    Plain("a b  c "),
    Plain("%"),
    Plain("%s%s%s%n%d%b"),
    Plain("%*c%1$s%%"),
    Plain("*"),
    Plain("?[a-z]{x}[^"),
    Plain("'; FLUSHALL; #"),
    Plain("$(reboot)`reboot`"),
    Plain("\x7f"),
    Plain("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x99\x82"),
    Plain("."),
    Plain(".."),
    Plain("0"),
    Plain("&&"),
    Plain("&&Object "),
    Plain("&&ObjectRef x"),
    Plain("&&Array a &&"),
    Plain("&&File x"),
    Plain("*3|$3|SET|"),
    {R"(\")", "\"", R"(\")"},
    {R"(\\)", "\\", R"(\\)"},
    {R"(a\\\"b\\)", "a\\\"b\\", R"(a\\\"b\\)"},
    {R"(a\nb\r\nc\td)", "a\nb\r\nc\td", "a\nb\r\nc\td"},
    {R"(\r\n*1\r\n$8\r\nFLUSHALL\r\n)", "\r\n*1\r\n$8\r\nFLUSHALL\r\n",
     "\r\n*1\r\n$8\r\nFLUSHALL\r\n"},
    {R"(\u0001\u001b[2J\b\f)", "\x01\x1b[2J\b\f", "\x01\x1b[2J\b\f"},
    {R"(\u00e9\ud83d\ude42)", "\xC3\xA9\xF0\x9F\x99\x82", "\xC3\xA9\xF0\x9F\x99\x82"},
};

class HostileInput : public SystemTest {
 protected:
  // Creates it on an empty store and then updates it with itself.
  void ExpectStored(const std::string& document, const std::string& dump) {
    const std::string file = tree.Write("a.json", document);
    (void)store.Run("FLUSHALL");
    Load({"create", file, "/r"});
    EXPECT_EQ(store.Dump(), dump) << document;
    Load({"update", file, "/r"});
    EXPECT_EQ(store.Dump(), dump) << document;
  }
};

TEST_F(HostileInput, AnyTextIsAName) {
  for (const Hostile& hostile : kHostileTexts) {
    const std::string name = "\"" + hostile.json + "\": ";
    model::Store expected;
    const std::string object_key = "&&/r/" + hostile.text;
    const std::string array_key = object_key + "/list";
    expected["/r"].value = model::Hash{{"&&Object " + hostile.text + " " + object_key, ""}};
    expected[object_key].value =
        model::Hash{{hostile.text, "1"}, {"&&Array list " + array_key, ""}};
    expected[array_key].value = model::List{"2"};
    ExpectStored("{" + name + "{" + name + "1, \"list\": [2]}}", model::Dump(expected));
  }
}

TEST_F(HostileInput, AnyTextIsAValue) {
  for (const Hostile& hostile : kHostileTexts) {
    const std::string value = "\"" + hostile.json + "\"";
    const std::string stored = "\"" + hostile.stored + "\"";
    model::Store expected;
    expected["/r"].value = model::Hash{{"A", stored},
                                       {"&&ETag", hostile.stored},
                                       {"&&Array L &&/r/L", ""},
                                       {"&&ObjectRef R " + hostile.text, ""}};
    expected["&&/r/L"].value = model::List{stored, "&&ObjectRef " + hostile.text};
    ExpectStored("{\"A\": " + value + ", \"&&ETag\": " + value + ", \"L\": [" + value +
                     ", {\"@odata.id\": " + value + "}], \"R\": {\"@odata.id\": " + value + "}}",
                 model::Dump(expected));
  }
}

TEST_F(HostileInput, AnyTextIsAnId) {
  for (const Hostile& hostile : kHostileTexts) {
    if (hostile.text == "*") continue;  // as a pattern, in an update, it is every key
    model::Store expected;
    expected["/r"].value = model::Hash{{"&&Object A " + hostile.text, ""}};
    expected[hostile.text].value =
        model::Hash{{"@odata.id", "\"" + hostile.stored + "\""}, {"x", "1"}};
    ExpectStored("{\"A\": {\"@odata.id\": \"" + hostile.json + "\", \"x\": 1}}",
                 model::Dump(expected));
  }
}

TEST_F(HostileInput, AnyTextIsAUri) {
  const std::string file = tree.Write("a.json", R"({"A": 1})");
  for (const Hostile& hostile : kHostileTexts) {
    (void)store.Run("FLUSHALL");
    for (const char* action : {"create", "update"}) {
      Load({action, file, hostile.text});
      model::Store expected;
      expected[hostile.text].value = model::Hash{{"A", "1"}};
      EXPECT_EQ(store.Dump(), model::Dump(expected));
    }
  }
}

TEST_F(HostileInput, AnActionIsNotAFormat) {
  const Finished run = Ostrafel({"%s%n", "/%s%n.json", "%s%n"});
  EXPECT_EQ(run.err.substr(0, 33), "Invalid Action parameter.\nUsage:\n");
  EXPECT_EQ(run.status, 255);
  ExpectFailure({"update", "/%s%n.json", "%s%n"},
                "Failed to check path /%s%n.json.\nInput path should be a file or directory\n");
}

TEST_F(HostileInput, NamesAndIdsThatAreEmptyOrHoldSlashes) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"": 1})", "hash | /r |  | 1\n"},
      {R"({"": {"x": 1}})", "hash | &&/r/ | x | 1\nhash | /r | &&Object  &&/r/ | \n"},
      {R"({"": ["x"]})", "list | &&/r/ | \"x\"\nhash | /r | &&Array  &&/r/ | \n"},
      {R"({"\/": {"x/y": [1]}})",
       "hash | &&/r/ | &&Array x/y &&/r/x/y | \n"
       "list | &&/r/x/y | 1\n"
       "hash | /r | &&Object / &&/r/ | \n"},
      {R"({"//a////b//": {"//": 1}})",
       "hash | &&/r/a/b/ | // | 1\n"
       "hash | /r | &&Object //a////b// &&/r/a/b/ | \n"},
      // An id may be a key that is derived elsewhere, or the root's own.
      {R"({"A": {"@odata.id": "&&/r/B", "x": 1}, "B": {"y": 2}})",
       "hash | &&/r/B | @odata.id | \"&&/r/B\"\n"
       "hash | &&/r/B | x | 1\n"
       "hash | &&/r/B | y | 2\n"
       "hash | /r | &&Object A &&/r/B | \n"
       "hash | /r | &&Object B &&/r/B | \n"},
      {R"({"A": {"@odata.id": "/r", "x": 1}, "y": 2})",
       "hash | /r | &&Object A /r | \nhash | /r | y | 2\n"},
  };
  for (const auto& [document, dump] : cases) ExpectStored(document, dump);
}

TEST_F(HostileInput, ANameThatReadsLikeARecordIsTheSameFieldAsTheRecord) {
  // The last one that is queued stays. The update removes the field before it writes the record,
  // and finds the record where it looks for an older shape of the name.
  const std::string file = tree.Write("a.json", R"({"&&Object A &&/r/A": 1, "A": {"x": 2}})");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | &&/r/A | x | 2\nhash | /r | &&Object A &&/r/A | \n");
  const std::string other = tree.Write("b.json", R"({"A": {"x": 2}, "&&Object A &&/r/A": 1})");
  Load({"create", other, "/r"});
  EXPECT_EQ(store.Dump(), "hash | &&/r/A | x | 2\nhash | /r | &&Object A &&/r/A | 1\n");
}

TEST_F(HostileInput, WhatTheParserRefusesIsQuotedAsItIs) {
  const std::pair<std::string, std::string> cases[] = {
      {"{\n\"A\": 1\n\"B\": 2}", "3: '}' expected near '\"B\"'"},
      // Invalid UTF-8, and half a surrogate pair.
      {"{\"A\": \"\xff\"}", "1: unable to decode byte 0xff near '\"'"},
      {"{\"A\xc3\": 1}", "1: unable to decode byte 0xc3 near '\"A'"},
      {"{\n\"A\": \"\xc0\xaf\"}", "2: unable to decode byte 0xc0 near '\"'"},
      {R"({"A": "\ud800"})", "1: invalid Unicode '\\uD800' near '\"\\ud800\"'"},
      // NUL in names and values, and what must be escaped.
      {R"({"A": "\u0000"})", "1: \\u0000 is not allowed without JSON_ALLOW_NUL near '\"\\u0000\"'"},
      {R"({"a\u0000b": 1})", "1: NUL byte in object key not supported near '\"a\\u0000b\"'"},
      {std::string("{\"A\": \"x\0y\"}", 12), "1: control character 0x0 near '\"x'"},
      {std::string("{\"A\": 1}\0", 9), "1: end of file expected near end of file"},
      {"{\"A\": \"a\tb\"}", "1: control character 0x9 near '\"a'"},
      {"{\"A\": \"a\nb\"}", "1: unexpected newline near '\"a'"},
      // No format.
      {"%s%n", "1: '[' or '{' expected near '%'"},
      {"{\"A\": \"%s%n", "1: premature end of input near '\"%s%n'"},
      // Numbers beyond the range. Of a token longer than 20 characters nothing is quoted.
      {R"({"A": -1e400})", "1: real number overflow near '-1e400'"},
      {R"({"A": 9223372036854775808})", "1: too big integer near '9223372036854775808'"},
      {R"({"A": -9223372036854775809})", "1: too big negative integer near '-9223372036854775809'"},
      {"{\"A\": 1" + std::string(5000, '0') + "}", "1: too big integer"},
  };
  for (const auto& [document, line] : cases) {
    const std::string file = tree.Write("a.json", document);
    ExpectFailure({"create", file, "/r"}, "error: on line " + line + "\nThe content of " + file +
                                              " is not a valid JSON data.\n");
    EXPECT_EQ(store.Dump(), "");
  }
}

TEST_F(HostileInput, NumbersAtTheEndsOfTheirRangesAreStored) {
  const std::string digits(5000, '3');
  ExpectStored("{\"A\": -0, \"B\": -0.0, \"C\": 1e-400, \"D\": -1e-400, \"E\": 0." + digits +
                   ", \"F\": 9223372036854775807, \"G\": -9223372036854775808, \"H\": 0e99999}",
               "hash | /r | A | 0\n"
               "hash | /r | B | -0.\n"
               "hash | /r | C | 0.\n"
               "hash | /r | D | -0.\n"
               "hash | /r | E | 0.333333\n"
               "hash | /r | F | 2147483647\n"
               "hash | /r | G | -2147483648\n"
               "hash | /r | H | 0.\n");
}

TEST_F(HostileInput, TheLargestRealIsStoredWithAllItsDigits) {
  const std::string round =
      "1000000000000000010979063629440455417404923096773118463368106829031575854049114915371633"
      "2897849468889906124966972117251561159028374314008832830700919814604603127166450293302718"
      "5697489699588559043338384466165001178426897626212945177628091195786707458122783970171784"
      "415105291802893207873272974885715430223118336";
  const std::string largest =
      "1797693134862315708145274237317043567980705675258449965989174768031572607800285387605895"
      "5863276687817154045895351438246423432132688946418276846754670353751698604991057655128207"
      "6245490090389328944075868508455133942304583236903222948165808559332123348274797826204144"
      "723168738177180919299881250404026184124858368";
  ExpectStored(R"({"A": 1e308, "B": -1.7976931348623157e308})",
               "hash | /r | A | " + round + ".\nhash | /r | B | -" + largest + ".\n");
}

TEST_F(HostileInput, AnIdThatIsTheKeyOfAListFailsTheLastFlush) {
  const std::string file =
      tree.Write("a.json", R"({"A": {"@odata.id": "&&/r/L", "x": 1}, "L": [1]})");
  ExpectFailure({"create", file, "/r"},
                "Some errors occur while creating list data into database\n"
                "The data in database would be incorrect\n"
                ">>> Fail to write rest of data into redis\n");
  EXPECT_EQ(store.Dump(),
            "hash | &&/r/L | @odata.id | \"&&/r/L\"\n"
            "hash | &&/r/L | x | 1\n"
            "hash | /r | &&Array L &&/r/L | \n"
            "hash | /r | &&Object A &&/r/L | \n");
}

}  // namespace
