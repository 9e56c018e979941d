// What files hold, and the key that a root object chooses.
#include <string>

#include "system/system_fixture.h"

namespace {

class Documents : public SystemTest {
 protected:
  static std::string InvalidContent(const std::string& path) {
    return "The content of " + path + " is not a valid JSON data.\n";
  }
};

TEST_F(Documents, AByteOrderMarkIsSkipped) {
  const std::string file = tree.Write("a.json", "\xEF\xBB\xBF{\"A\": 1}");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

TEST_F(Documents, AnEmptyFileIsRefused) {
  const std::string file = tree.Write("a.json", "");
  ExpectFailure({"update", file, "/r"},
                "error: Failed to read file.\n"
                "error: on line 1: '[' or '{' expected near end of file\n" +
                    InvalidContent(file));
}

TEST_F(Documents, AnEmptyObjectOfTwoBytesIsReportedAndLoaded) {
  const std::string file = tree.Write("a.json", "{}");
  const Finished run = Ostrafel({"create", file, "/r"});
  EXPECT_EQ(run.out, kSuccessLine);
  EXPECT_EQ(run.err, "error: Failed to read file.\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(store.Dump(), "");
}

TEST_F(Documents, AnArrayIsRefusedWithoutALineOfTheParser) {
  const std::string file = tree.Write("a.json", "[1, 2]");
  ExpectFailure({"update", file, "/r"}, InvalidContent(file));
}

TEST_F(Documents, AScalarRootIsRefusedByTheParser) {
  const std::string file = tree.Write("a.json", "1234");
  ExpectFailure({"update", file, "/r"},
                "error: on line 1: '[' or '{' expected near '1234'\n" + InvalidContent(file));
}

TEST_F(Documents, ASyntaxErrorIsReportedWithItsLine) {
  const std::string file = tree.Write("a.json", "{\n\"A\": 1\n\"B\": 2}");
  ExpectFailure({"update", file, "/r"},
                "error: on line 3: '}' expected near '\"B\"'\n" + InvalidContent(file));
}

TEST_F(Documents, AnIntegerBeyond64BitsIsRefused) {
  const std::string file = tree.Write("a.json", R"({"A": 18446744073709551615})");
  ExpectFailure(
      {"update", file, "/r"},
      "error: on line 1: too big integer near '18446744073709551615'\n" + InvalidContent(file));
}

TEST_F(Documents, ANulInAStringIsRefused) {
  const std::string file = tree.Write("a.json", R"({"A": "x\u0000y"})");
  ExpectFailure({"update", file, "/r"},
                "error: on line 1: \\u0000 is not allowed without JSON_ALLOW_NUL near "
                "'\"x\\u0000y\"'\n" +
                    InvalidContent(file));
}

TEST_F(Documents, ARootWithAnIdAndMoreGoesToThatId) {
  const std::string file = tree.Write("a.json", R"({"@odata.id": "/a//b/", "A": 1})");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(),
            "hash | /a//b/ | @odata.id | \"/a//b/\"\n"
            "hash | /a//b/ | A | 1\n");
}

TEST_F(Documents, ARootWithNothingButAnIdGoesToTheListedKey) {
  const std::string file = tree.Write("a.json", R"({"@odata.id": "/a/b"})");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | @odata.id | \"/a/b\"\n");
}

TEST_F(Documents, ARootWhoseIdIsNoStringFailsSilently) {
  for (const char* id : {"1", "null", "true", "{}", "[\"/a\"]"}) {
    const std::string file =
        tree.Write("a.json", R"({"A": 1, "@odata.id": )" + std::string(id) + "}");
    ExpectFailure({"update", file, "/r"}, "");
    EXPECT_EQ(Sent(), "") << id;
  }
}

TEST_F(Documents, ARootWithNothingButAnIdThatIsNoStringIsAnOrdinaryMember) {
  const std::string file = tree.Write("a.json", R"({"@odata.id": 5})");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | @odata.id | 5\n");
}

TEST_F(Documents, ALaterInvalidFileDropsWhatWaits) {
  tree.Write("index.json", R"({"A": 1})");
  const std::string bad = tree.Write("z/index.json", "{");
  // The order of the listing decides which file comes first; the run fails in any case and no
  // batch is sent.
  ExpectFailure({"update", tree.path(), "/r"},
                "error: Failed to read file.\n"
                "error: on line 1: string or '}' expected near end of file\n" +
                    InvalidContent(bad));
  EXPECT_EQ(store.Dump(), "");
}

TEST_F(Documents, ALaterInvalidFileLeavesWhatWasSent) {
  // Two files in a folder each would come in either order, so the large one is an update of its own
  // members: the flush happens in the middle of it.
  std::string large = "{";
  for (int i = 0; i < 2001; ++i) large += "\"m" + std::to_string(i) + "\": 1, ";
  const std::string file = tree.Write("a.json", large + R"("Bad": {"@odata.id": 1}})");
  ExpectFailure({"create", file, "/r"}, ">>> Error occurs while parsing file " + file + "\n");
  EXPECT_EQ(store.Run("HLEN | /r").integer, 2000);
}

TEST_F(Documents, TwoFilesForOneKeyAreWrittenOnce) {
  tree.Write("index.json", R"({"@odata.id": "/same", "A": 1})");
  tree.Write("z/index.json", R"({"@odata.id": "/same", "A": 1})");
  Load({"create", tree.path(), "/r"});
  EXPECT_EQ(store.Dump(), "hash | /same | @odata.id | \"/same\"\nhash | /same | A | 1\n");
  EXPECT_EQ(recording.flights.back().commands.size(), 2U);
}

TEST_F(Documents, AFailedWriterIsReportedAfterTheConnectionIsClosed) {
  const std::string file = tree.Write("a.json", R"({"A": 1, "Bad": {"@odata.id": 1}})");
  ExpectFailure({"create", file, "/r"}, ">>> Error occurs while parsing file " + file + "\n");
  EXPECT_EQ(recording.closed_by_client, 1);
  EXPECT_EQ(store.Dump(), "");
}

TEST_F(Documents, ARootWhoseLastMemberSucceedsIsASuccess) {
  const std::string file = tree.Write("a.json", R"({"Bad": {"@odata.id": 1}, "A": 1})");
  Load({"create", file, "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

}  // namespace
