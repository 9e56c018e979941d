// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Starts the test program anew inside scripts/sandbox, unless it is there already or only lists its
// tests. Everything that the tests touch is then their own.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv, argv + argc);
  testing::InitGoogleTest(&argc, argv);
  if (testing::GTEST_FLAG(list_tests) || std::getenv("OSTRAFEL_SANDBOX") != nullptr) {
    return RUN_ALL_TESTS();
  }
  std::vector<std::string> command = {OSTRAFEL_SOURCE_DIR "/scripts/sandbox", "--"};
  const std::string emulator = OSTRAFEL_EMULATOR;  // of a processor that is not this machine's
  if (!emulator.empty()) command.push_back(emulator);
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& argument : command) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  (void)execv(pointers[0], pointers.data());
  std::perror(pointers[0]);
  return 1;
}
