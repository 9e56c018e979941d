// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/array_stream.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <stdexcept>
#include <string>

#include "live/canned_connection.h"
#include "live/session.h"
#include "support/repeated.h"
#include "support/sockets.h"
#include "system/input_size.h"

namespace ostrafel {

namespace {

const std::string kWrong = "Redis answers EXEC with something else than it should";
const std::string kClosed = "the connection to Redis failed: Server closed the connection";

// The elements that are given away, a line each, and how that ends.
std::string Stream(const std::string& answer) {
  CannedConnection connection(answer);
  std::string text;
  try {
    const std::size_t size = StreamArray(connection.context(), "EXEC",
                                         [&](std::size_t place, const ArrayElement& element) {
                                           text += std::to_string(place) + ":";
                                           for (const std::string& string : element.strings)
                                             text += " " + string;
                                           text += "\n";
                                         });
    return text + "size " + std::to_string(size);
  } catch (const std::runtime_error& error) {
    return text + error.what();
  }
}

const std::string kWhole = "*4\r\n*2\r\n$1\r\na\r\n$1\r\nb\r\n*0\r\n+none\r\n-WRONGTYPE x\r\n";

TEST(ArrayStream, GivesElementsInTheirOrder) {
  EXPECT_EQ(Stream(kWhole), "0: a b\n1:\n2: none\n3: WRONGTYPE x\nsize 4");
  EXPECT_EQ(Stream("*0\r\n"), "size 0");
}

TEST(ArrayStream, RaisesAnErrorThatComesInstead) {
  EXPECT_EQ(Stream("-EXECABORT no\r\n"), "Redis answers EXEC with: EXECABORT no");
}

TEST(ArrayStream, RefusesWhatIsNoSuchArray) {
  for (const char* answer : {"+OK\r\n", ":1\r\n", "$-1\r\n", "$1\r\nx\r\n", "*1\r\n:1\r\n",
                             "*1\r\n$-1\r\n", "*1\r\n$1\r\nx\r\n", "*1\r\n*1\r\n:1\r\n",
                             "*1\r\n*1\r\n*0\r\n", "*1\r\n*1\r\n+x\r\n", "*1\r\n*1\r\n$-1\r\n"}) {
    EXPECT_EQ(Stream(answer), kWrong) << answer;
  }
}

// Which are of a newer protocol. hiredis knows them from 1.0 on.
TEST(ArrayStream, RefusesOtherTypes) {
  for (const char* answer : {",1.5\r\n", "#t\r\n", "*1\r\n,1.5\r\n", "*1\r\n#t\r\n", "*1\r\n_\r\n",
                             "%1\r\n+a\r\n+b\r\n", "*1\r\n~1\r\n$1\r\nx\r\n"}) {
    const std::string text = Stream(answer);
    const bool is_unknown =
        text.rfind("the connection to Redis failed: Protocol error, got ", 0) == 0;
    EXPECT_TRUE(text == kWrong || is_unknown) << answer << " " << text;
  }
}

TEST(ArrayStream, DoesNotReadOnWhatIsWrong) {
  // The rest never comes, and is not waited for.
  EXPECT_EQ(Stream("*2\r\n:1\r\n"), kWrong);
}

TEST(ArrayStream, TellsOfAnEndAfterAnyByte) {
  for (std::size_t size = 0; size < kWhole.size(); ++size) {
    const std::string text = Stream(kWhole.substr(0, size));
    EXPECT_EQ(text.substr(text.rfind('\n') + 1), kClosed) << size;
  }
}

// The second element never comes.
TEST(ArrayStream, GivesAnElementBeforeTheNextOneIsThere) {
  EXPECT_EQ(Stream("*2\r\n*1\r\n$1\r\na\r\n*1\r\n$5\r\nb"), "0: a\n" + kClosed);
}

TEST(ArrayStream, PassesOnWhatTheTakerRaises) {
  CannedConnection connection(kWhole);
  EXPECT_THROW(
      (void)StreamArray(connection.context(), "EXEC",
                        [](std::size_t, const ArrayElement&) { throw std::logic_error("no"); }),
      std::logic_error);
}

TEST(ArrayStream, LeavesTheNextReplyToOthers) {
  CannedConnection connection(kWhole + "*1\r\n$1\r\nx\r\n");
  EXPECT_EQ(StreamArray(connection.context(), "EXEC", [](std::size_t, const ArrayElement&) {}), 4U);
  LivePipeline pipeline(connection.context());
  const Reply reply = pipeline.Next();
  ASSERT_EQ(reply->type, REDIS_REPLY_ARRAY);
  ASSERT_EQ(reply->elements, 1U);
  EXPECT_EQ(TextOf(*reply->element[0]), "x");
}

// The most memory that this process has had, in KiB.
long Peak() {
  rusage usage = {};
  EXPECT_EQ(getrusage(RUSAGE_SELF, &usage), 0);
  return usage.ru_maxrss;
}

// Runs in a process of its own, whose memory no other test has grown, and returns its status.
template <typename Function>
int StatusOfChild(const Function& function) {
  const pid_t child = fork();
  if (child == 0) {
    int status = 255;
    try {
      status = function();
    } catch (const std::exception&) {
      // told by the status
    }
    _exit(status);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 255;
}

// By so many MiB does the memory grow that an array of so many of these elements takes; 255 when it
// is not read.
int GrowthOf(std::size_t elements, const std::string& element) {
  std::array<int, 2> ends = {};
  EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
  const pid_t writer = fork();
  if (writer == 0) {
    (void)close(ends[0]);
    bool is_written = WriteAll(ends[1], "*" + std::to_string(elements) + "\r\n");
    for (std::size_t i = 0; i < elements && is_written; ++i)
      is_written = WriteAll(ends[1], element);
    _exit(is_written ? 0 : 1);
  }
  (void)close(ends[1]);
  const int growth = StatusOfChild([&] {
    const StoreConnection connection(redisConnectFd(ends[0]));
    const long before = Peak();
    std::size_t taken = 0;
    const std::size_t size =
        StreamArray(connection.get(), "EXEC", [&](std::size_t place, const ArrayElement& given) {
          taken += place == taken && !given.strings.empty() ? 1 : 0;
        });
    if (size != elements || taken != elements) return 255;
    return static_cast<int>(std::min((Peak() - before) / 1024, 254L));
  });
  (void)close(ends[0]);
  int status = 0;
  EXPECT_EQ(waitpid(writer, &status, 0), writer);
  EXPECT_EQ(status, 0);
  return growth;
}

TEST(ArrayStream, HoldsOneElementAtATime) {
  if (kIsSanitized) GTEST_SKIP() << "the address sanitizer keeps what is freed";
  const std::string string = "$1000\r\n" + std::string(1000, 'x') + "\r\n";
  EXPECT_LT(GrowthOf(65536, "*1\r\n" + string), 8) << "64 MB in small elements";
  EXPECT_LT(GrowthOf(64, "*1000\r\n" + Repeated(string, 1000)), 16) << "64 MB in large ones";
}

}  // namespace

}  // namespace ostrafel
