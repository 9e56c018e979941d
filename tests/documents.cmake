# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# The commands that the documents show: beside the sources, and in a machine with the package.

foreach(test commands_test machine_test)
  add_test(NAME documents.${test} COMMAND ${PROJECT_SOURCE_DIR}/tests/documents/${test})
  set_tests_properties(documents.${test} PROPERTIES
    SKIP_REGULAR_EXPRESSION "${skipped_regex}"
    TIMEOUT 900)
endforeach()
set_tests_properties(documents.machine_test PROPERTIES
  FIXTURES_REQUIRED packages
  COST 500
  ENVIRONMENT "OSTRAFEL_PACKAGES=${packages};OSTRAFEL_MACHINE_CACHE=${PROJECT_BINARY_DIR}/machines")
# Two of these build the release, as one does who follows the documents, and one installs it.
set_tests_properties(documents.commands_test scripts.demo_test installation PROPERTIES
  RESOURCE_LOCK release_build)
