// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <sys/resource.h>

#include "check/check_fixture.h"

namespace ostrafel {

namespace {

/// Lets the process open no more than so many files.
class DescriptorLimit {
 public:
  explicit DescriptorLimit(rlim_t count) {
    (void)getrlimit(RLIMIT_NOFILE, &before_);
    const rlimit limit = {count, before_.rlim_max};
    (void)setrlimit(RLIMIT_NOFILE, &limit);
  }
  ~DescriptorLimit() { (void)setrlimit(RLIMIT_NOFILE, &before_); }
  DescriptorLimit(const DescriptorLimit&) = delete;
  DescriptorLimit& operator=(const DescriptorLimit&) = delete;

 private:
  rlimit before_ = {};
};

class LinkRules : public CheckTest {
 protected:
  /// Writes the file of the root, with these members.
  void WriteRoot(const std::string& members) {
    Write("index.json", R"({"@odata.id": "/redfish/v1", )" + members + "}");
  }

  /// Writes the file of a folder with an array, an object with an id of its own, and a name.
  void WriteThing() {
    Write("C/index.json", R"({"@odata.id": "/redfish/v1/C", "Name": "C", "List": [{"a": 1}, 2],
        "Own": {"@odata.id": "/redfish/v1/C#/Own", "x": 1}, "Odd/~ name": {"": 1}})");
  }
};

TEST_F(LinkRules, FindNothingInASoundTree) {
  Write("index.json", R"({"@odata.id": "/redfish/v1", "Chassis": {"@odata.id": "/redfish/v1/C"}})");
  Write("C/index.json", R"({"@odata.id": "/redfish/v1/C", "Name": "C"})");
  EXPECT_EQ(Found("link-"), Lines{});
}

// --- link-dangling

TEST_F(LinkRules, TellALinkToNothing) {
  WriteRoot(
      R"("A": {"@odata.id": "/redfish/v1/C"}, "B": {"In": [{"@odata.id": "/redfish/v1/D"}]})");
  WriteThing();
  EXPECT_EQ(Pointers("link-"), Lines{"link-dangling index.json /B/In/0/@odata.id"});
  EXPECT_EQ(Sentences("link-"),
            Lines{"the link leads to \"/redfish/v1/D\", where nothing is stored: "
                  "no file and no object of the tree has that key"});
}

TEST_F(LinkRules, TellOfAFolderWhoseFileSaysItIsAnother) {
  WriteRoot(R"("A": {"@odata.id": "/redfish/v1/D"})");
  Write("D/index.json", R"({"Name": "D", "@odata.id": "/redfish/v1/E"})");
  EXPECT_EQ(Pointers("link-"),
            (Lines{"link-dangling index.json /A/@odata.id", "  D/index.json /@odata.id"}));
  EXPECT_EQ(
      Sentences("link-"),
      Lines{"the link leads to \"/redfish/v1/D\", where nothing is stored: the folder exists, "
            "but its file says that it is \"/redfish/v1/E\""});
}

TEST_F(LinkRules, TellOfASlashAtTheEnd) {
  WriteRoot(R"("A": {"@odata.id": "/redfish/v1/C/"}, "B": {"@odata.id": "/redfish/v1/D"},
      "E": {"@odata.id": "/redfish/v1/D/", "N": 1})");
  WriteThing();
  EXPECT_EQ(Sentences("link-"),
            (Lines{"the link leads to \"/redfish/v1/C/\", where nothing is stored: there is "
                   "\"/redfish/v1/C\", but a slash at the end makes it another key",
                   "the link leads to \"/redfish/v1/D\", where nothing is stored: there is "
                   "\"/redfish/v1/D/\", but a slash at the end makes it another key"}));
}

TEST_F(LinkRules, TellOfWhatLiesOutsideOfTheTree) {
  WriteRoot(R"("A": {"@odata.id": "/redfish"}, "B": {"@odata.id": "C"}, "D": {"@odata.id": ""})");
  WriteThing();
  EXPECT_EQ(Sentences("link-"),
            (Lines{"the link leads to \"/redfish\", where nothing is stored: it lies outside of "
                   "\"/redfish/v1\"",
                   "the link leads to \"C\", where nothing is stored: it lies outside of "
                   "\"/redfish/v1\"",
                   "the link names nothing"}));
}

TEST_F(LinkRules, TellOfAFileThatIsEmpty) {
  WriteRoot(R"("A": {"@odata.id": "/redfish/v1/D"})");
  Write("D/index.json", "{}");
  EXPECT_EQ(Pointers("link-"), (Lines{"link-dangling index.json /A/@odata.id", "  D/index.json "}));
}

TEST_F(LinkRules, LeaveOtherHostsAlone) {
  WriteRoot(R"("A": {"@odata.id": "//host/x"}, "B": {"@odata.id": "http://host/x"},
      "C": {"@odata.id": "urn+x-1.2:y"}, "D": {"@odata.id": "1x:y"}, "E": {"@odata.id": ":y"},
      "F": {"@odata.id": "/x:y"})");
  EXPECT_EQ(Pointers("link-"),
            (Lines{"link-dangling index.json /D/@odata.id", "link-dangling index.json /E/@odata.id",
                   "link-dangling index.json /F/@odata.id"}));
}

TEST_F(LinkRules, BelieveInFilesThatCannotBeRead) {
  WriteRoot(R"("A": {"@odata.id": "/redfish/v1/D"}, "B": {"@odata.id": "/redfish/v1/D#/x"},
      "C": {"@odata.id": "/redfish/v1/E"})");
  Write("D/index.json", "{");
  Write("E/index.json", R"({"@odata.id": "/redfish/v1/E", "&&File": "none.json"})");
  EXPECT_EQ(Found("link-"), Lines{});
}

TEST_F(LinkRules, JudgeNoLinkWhereAFolderCannotBeRead) {
  const std::string text = R"({"A": {"@odata.id": "/no"}, "B": {"@odata.id": "#/no"}, "Uri": "/no",
      "L": [{"@odata.id": "/no"}, {"@odata.id": "/no"}]})";
  // Whatever the order of listings is, some of these files come before the folders beside them.
  for (const int first : {1, 0}) {
    std::string path;
    for (int level = 0; level < 30; ++level) {
      path += "d" + std::to_string(level) + "/";
      if (level % 2 == first) Write(path + "index.json", text);
    }
  }
  EXPECT_NE(Pointers("link-dangling"), Lines{});
  EXPECT_NE(Pointers("link-fragment"), Lines{});
  EXPECT_NE(Pointers("link-uri"), Lines{});
  // The walk keeps a folder open while it is in those below.
  const DescriptorLimit limit(20);
  EXPECT_NE(Pointers("link-repeated"), Lines{});
  EXPECT_EQ(Pointers("link-dangling"), Lines{});
  EXPECT_EQ(Pointers("link-fragment"), Lines{});
  EXPECT_EQ(Pointers("link-uri"), Lines{});
}

TEST_F(LinkRules, SayNothingOfWhatIsNotStored) {
  WriteRoot(R"("A": {"@odata.id": "/redfish/v1", "N": {"@odata.id": "/no"}, "Uri": "/no"},
      "B": [{"@odata.id": 5}, {"@odata.id": "/no"}], "C": {"x": {"@odata.id": 5}, "Uri": "/no"},
      "D": 1)");
  EXPECT_EQ(Found("link-"), Lines{});
}

TEST_F(LinkRules, SayNothingOfAnObjectThatIsLost) {
  WriteRoot(R"("A": {"Bad": {"@odata.id": 5}, "B": {"@odata.id": "/redfish/v1/B", "N": 1}},
      "C": {"@odata.id": "/redfish/v1/B"})");
  EXPECT_EQ(Found("link-"), Lines{});
}

TEST_F(LinkRules, PointToTheTarget) {
  Write("index.json",
        "\xEF\xBB\xBF{\r\n\t\"ä\": {\"@odata.id\": \"/redfish/v1/D\"},\r\n\t\"Uri\":\r\n"
        "\"/no\"}");
  EXPECT_EQ(Found("link-"),
            (Lines{"link-dangling index.json:2:21 /ä/@odata.id", "link-uri index.json:4:1 /Uri"}));
}

// --- link-fragment

TEST_F(LinkRules, FollowFragments) {
  WriteRoot(R"("L": [{"@odata.id": "/redfish/v1/C#/List/0"}, {"@odata.id": "/redfish/v1/C#/List/1"},
      {"@odata.id": "/redfish/v1/C#"}, {"@odata.id": "#/L/0"}, {"@odata.id": "#"},
      {"@odata.id": "/redfish/v1/C#/Odd~1~0%20name/"}, {"@odata.id": "/redfish/v1/C#/Own"},
      {"@odata.id": "/redfish/v1/C#%2fOwn%2Fx"}, {"@odata.id": "/redfish/v1#/L"}])");
  WriteThing();
  EXPECT_EQ(Found("link-"), Lines{});
}

TEST_F(LinkRules, TellAFragmentThatLeadsNowhere) {
  WriteRoot(
      R"("L": [{"@odata.id": "/redfish/v1/C#/List/2"}, {"@odata.id": "/redfish/v1/C#/List/00"},
      {"@odata.id": "/redfish/v1/C#List"}, {"@odata.id": "#/M"}, {"@odata.id": "/redfish/v1/C#/%zz"},
      {"@odata.id": "/redfish/v1/C#/Odd~2"}, {"@odata.id": "/redfish/v1/C#/Own#x"}])");
  WriteThing();
  Lines expected;
  for (int i = 0; i < 7; ++i) {
    expected.push_back("link-fragment index.json /L/" + std::to_string(i) + "/@odata.id");
  }
  EXPECT_EQ(Pointers("link-"), expected);
  const Lines sentences = Sentences("link-");
  EXPECT_EQ(sentences[0],
            "the link leads nowhere: what is stored at \"/redfish/v1/C\" has no "
            "\"/List/2\"");
  EXPECT_EQ(sentences[3], "the link leads nowhere: this document has no \"/M\"");
}

TEST_F(LinkRules, TellAFragmentOfNothingAsDangling) {
  WriteRoot(R"("A": {"@odata.id": "/redfish/v1/D#/x"})");
  EXPECT_EQ(Pointers("link-"), Lines{"link-dangling index.json /A/@odata.id"});
  EXPECT_EQ(Sentences("link-"),
            Lines{"the link leads to \"/redfish/v1/D\", where nothing is stored: "
                  "no file and no object of the tree has that key"});
}

TEST_F(LinkRules, LookForFragmentsInWhatIsStoredThere) {
  WriteRoot(R"("O": {"@odata.id": "/redfish/v1/O", "x": 1}, "A": {"@odata.id": "/redfish/v1/O#/x"},
      "B": {"@odata.id": "/redfish/v1/O#/O"}, "I": {"@odata.id": "/redfish/v1/I#/y"},
      "J": {"@odata.id": "/redfish/v1/I#/z"})");
  Write("I/index.json", R"({"@odata.id": "/redfish/v1/I", "z": 1, "&&File": "i.json"})");
  Include("i.json", R"({"y": {"u": {"@odata.id": "#/y"}, "v": {"@odata.id": "#/z"}}})");
  EXPECT_EQ(Pointers("link-"),
            (Lines{"link-fragment index.json /B/@odata.id", "link-fragment index.json /J/@odata.id",
                   "link-fragment www/i.json /y/v/@odata.id"}));
}

// --- link-uri

TEST_F(LinkRules, TellUrisThatLeadToNothing) {
  WriteRoot(R"("Uri": "/a", "DataSourceUri": "/redfish/v1/D", "ImageURI": "/b",
      "@Redfish.ActionInfo": "/c", "Fine@Redfish.ActionInfo": "/redfish/v1/C",
      "In": [{"LogUri": "/redfish/v1/C/"}])");
  WriteThing();
  EXPECT_EQ(Pointers("link-"),
            (Lines{"link-uri index.json /Uri", "link-uri index.json /DataSourceUri",
                   "link-uri index.json /ImageURI", "link-uri index.json /@Redfish.ActionInfo",
                   "link-uri index.json /In/0/LogUri"}));
  EXPECT_EQ(Sentences("link-uri")[1],
            "the URI leads to \"/redfish/v1/D\", where nothing is stored: no "
            "file and no object of the tree has that key");
}

TEST_F(LinkRules, LeaveOtherMembersAlone) {
  WriteRoot(R"("HttpPushUri": "/a", "MultipartHttpPushUri": "/a", "BUri": "//host/a", "CUri": "a",
      "DUri": "http://host/a", "EUri": "", "uri": "/a", "UriList": "/a", "FUri": 5,
      "GUri": ["/a"], "HUri": "/redfish/v1", "target": "/a", "IUri": null)");
  EXPECT_EQ(Found("link-"), Lines{});
}

TEST_F(LinkRules, TakeUrisWithoutTheirQuery) {
  WriteRoot(R"("AUri": "/redfish/v1?x=/y", "BUri": "/redfish/v1/?x", "CUri": "/redfish/v1?x#/AUri",
      "DUri": "/redfish/v1?x#/no", "A": {"@odata.id": "/redfish/v1?x"})");
  EXPECT_EQ(Pointers("link-"), (Lines{"link-uri index.json /BUri", "link-fragment index.json /DUri",
                                      "link-dangling index.json /A/@odata.id"}));
}

// --- link-repeated

TEST_F(LinkRules, TellALinkThatAnArrayHolds) {
  WriteRoot(R"("L": [{"@odata.id": "/redfish/v1"}, 1, {"@odata.id": "/redfish/v1/C"},
      {"@odata.id": "/redfish/v1"}, {"@odata.id": "/redfish/v1"}], "M": [{"@odata.id": "/redfish/v1"},
      [{"@odata.id": "/redfish/v1"}], {"in": {"@odata.id": "/redfish/v1"}}],
      "A": {"@odata.id": "/redfish/v1"}, "B": {"@odata.id": "/redfish/v1"})");
  WriteThing();
  EXPECT_EQ(Pointers("link-"),
            (Lines{"link-repeated index.json /L/3/@odata.id", "  index.json /L/0/@odata.id",
                   "link-repeated index.json /L/4/@odata.id", "  index.json /L/0/@odata.id"}));
  EXPECT_EQ(Sentences("link-")[0], "the array has a link to \"/redfish/v1\" before this one");
}

TEST_F(LinkRules, TellALinkToAnotherHostThatAnArrayHolds) {
  WriteRoot(R"("L": [{"@odata.id": "http://host/x"}, {"@odata.id": "http://host/x"}])");
  EXPECT_EQ(Pointers("link-"),
            (Lines{"link-repeated index.json /L/1/@odata.id", "  index.json /L/0/@odata.id"}));
}

}  // namespace

}  // namespace ostrafel
