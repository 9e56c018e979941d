# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# The Debian packages, which are made of the sources whatever this build is: tested in one of them.

set(packages ${PROJECT_BINARY_DIR}/packages)
add_test(NAME package.build COMMAND ${PROJECT_SOURCE_DIR}/tests/package/build_test ${packages})
set_tests_properties(package.build PROPERTIES
  FIXTURES_SETUP packages
  SKIP_REGULAR_EXPRESSION "${skipped_regex}"
  TIMEOUT 600)

foreach(test package_test reproducible_test install_test autopkgtest_test piuparts_test boot_test)
  add_test(NAME package.${test} COMMAND ${PROJECT_SOURCE_DIR}/tests/package/${test})
  set_tests_properties(package.${test} PROPERTIES
    FIXTURES_REQUIRED packages
    ENVIRONMENT "OSTRAFEL_PACKAGES=${packages};OSTRAFEL_MACHINE_CACHE=${PROJECT_BINARY_DIR}/machines"
    SKIP_REGULAR_EXPRESSION "${skipped_regex}"
    TIMEOUT 1200)
endforeach()

# What the Yocto layer would put into an image, in a machine of the same kind.
add_test(NAME yocto.boot_test COMMAND ${PROJECT_SOURCE_DIR}/tests/yocto/boot_test)
set_tests_properties(yocto.boot_test PROPERTIES
  FIXTURES_REQUIRED installation
  ENVIRONMENT "OSTRAFEL_INSTALLED=${installed};OSTRAFEL_MACHINE_CACHE=${PROJECT_BINARY_DIR}/machines"
  SKIP_REGULAR_EXPRESSION "everything # SKIP"
  TIMEOUT 600)
