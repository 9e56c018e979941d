// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/tool.h"

#include <gtest/gtest.h>
#include <jansson.h>

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>

namespace ostrafel {

namespace {

struct Ran {
  int status;
  std::string err;
};

// RunTool lets jansson allocate in another way, which is put back.
Ran RunWith(int (*run)(int argc, char** argv)) {
  json_malloc_t allocate = nullptr;
  json_free_t release = nullptr;
  json_get_alloc_funcs(&allocate, &release);
  testing::internal::CaptureStderr();
  const int status = RunTool(0, nullptr, run);
  json_set_alloc_funcs(allocate, release);
  return {status, testing::internal::GetCapturedStderr()};
}

TEST(RunTool, EndsAsTheProgramDoes) {
  const Ran ran = RunWith([](int /*argc*/, char** /*argv*/) { return 1; });
  EXPECT_EQ(ran.status, 1);
  EXPECT_EQ(ran.err, "");
}

TEST(RunTool, TellsWhatIsRaised) {
  const Ran ran =
      RunWith([](int /*argc*/, char** /*argv*/) -> int { throw std::runtime_error("the reason"); });
  EXPECT_EQ(ran.status, kTrouble);
  EXPECT_EQ(ran.err, ToolName + std::string(": the reason\n"));
}

TEST(RunTool, TellsThatMemoryRanOut) {
  const Ran ran = RunWith([](int /*argc*/, char** /*argv*/) -> int { throw std::bad_alloc(); });
  EXPECT_EQ(ran.status, kTrouble);
  EXPECT_EQ(ran.err, ToolName + std::string(": out of memory\n"));
}

TEST(RunTool, MayLetJsonGoOnWithoutMemory) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the address sanitizer ends a program that asks for so much";
#endif
  const Ran ran = RunWith([](int /*argc*/, char** /*argv*/) {
    SurviveJsonMemory();
    CheckJsonMemory();
    json_malloc_t allocate = nullptr;
    json_free_t release = nullptr;
    json_get_alloc_funcs(&allocate, &release);
    EXPECT_EQ(allocate(std::numeric_limits<std::size_t>::max()), nullptr);
    CheckJsonMemory();
    return 0;
  });
  EXPECT_EQ(ran.status, kTrouble);
  EXPECT_EQ(ran.err, ToolName + std::string(": out of memory\n"));
}

}  // namespace

}  // namespace ostrafel
