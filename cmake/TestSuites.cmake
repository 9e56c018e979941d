# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# Read by ctest, once for each test program, with ${program} set: makes a test of each suite. Each runs
# in a process, and in a sandbox, of its own.

cmake_path(GET program FILENAME name)
execute_process(COMMAND ${program} --gtest_list_tests OUTPUT_VARIABLE listed RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  add_test(${name} ${program})  # which shows what is wrong with it
  return()
endif()

set(long_suites
  "RandomRuns|HugeInput|ChangingTree|Mockups|HugeTree|CutEverywhere|WrongReplies|FailingAllocation")

# The names of suites are the lines that are not indented. What takes longest begins first.
string(REGEX MATCHALL "(^|\n)[A-Za-z0-9_/]+[.]" suites "${listed}")
foreach(suite IN LISTS suites)
  string(REGEX REPLACE "[\n.]" "" suite "${suite}")
  set(test ${name}.${suite})
  add_test(${test} ${program} --gtest_filter=${suite}.*)
  set_tests_properties(${test} PROPERTIES
    SKIP_REGULAR_EXPRESSION "\\[  PASSED  \\] 0 tests"
    TIMEOUT 900)
  if(suite MATCHES "${long_suites}")
    set_tests_properties(${test} PROPERTIES COST 100)
  endif()
endforeach()
