# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# The Debian packages, which are made of the sources whatever this build is: tested in one of them.

set(packages ${PROJECT_BINARY_DIR}/packages)
add_test(NAME package.build COMMAND ${PROJECT_SOURCE_DIR}/tests/package/build_test ${packages})
set_tests_properties(package.build PROPERTIES
  FIXTURES_SETUP packages
  COST 2000
  SKIP_REGULAR_EXPRESSION "${skipped_regex}"
  TIMEOUT 600)

foreach(test package_test reproducible_test install_test autopkgtest_test piuparts_test boot_test)
  add_test(NAME package.${test} COMMAND ${PROJECT_SOURCE_DIR}/tests/package/${test})
  set_tests_properties(package.${test} PROPERTIES
    FIXTURES_REQUIRED packages
    ENVIRONMENT "OSTRAFEL_PACKAGES=${packages};OSTRAFEL_MACHINE_CACHE=${PROJECT_BINARY_DIR}/machines"
    SKIP_REGULAR_EXPRESSION "${skipped_regex}"
    COST 500
    TIMEOUT 1200)
endforeach()

# What the Yocto layer would put into an image, in a machine of the same kind.
add_test(NAME yocto.boot_test COMMAND ${PROJECT_SOURCE_DIR}/tests/yocto/boot_test)
set_tests_properties(yocto.boot_test PROPERTIES
  FIXTURES_REQUIRED installation
  ENVIRONMENT "OSTRAFEL_INSTALLED=${installed};OSTRAFEL_MACHINE_CACHE=${PROJECT_BINARY_DIR}/machines"
  SKIP_REGULAR_EXPRESSION "${skipped_regex}"
  COST 500
  TIMEOUT 600)

# The next release, with either of its servers. What takes longest begins first.
set(release_folder ${PROJECT_BINARY_DIR}/debian13)
function(add_debian13_test name needs packages)
  add_test(NAME debian13.${name} COMMAND ${PROJECT_SOURCE_DIR}/tests/package/${ARGN})
  set_tests_properties(debian13.${name} PROPERTIES
    FIXTURES_REQUIRED "${needs}"
    ENVIRONMENT "OSTRAFEL_PACKAGES=${packages};OSTRAFEL_MACHINE_CACHE=${PROJECT_BINARY_DIR}/machines;OSTRAFEL_RELEASE_FOLDER=${release_folder}"
    SKIP_REGULAR_EXPRESSION "${skipped_regex}"
    COST 1000
    TIMEOUT 2400)
endfunction()

add_debian13_test(build "" "" release_build_test trixie)
set_tests_properties(debian13.build PROPERTIES FIXTURES_SETUP debian13)
add_debian13_test(redis debian13 "" release_server_test trixie redis-server 8)
add_debian13_test(valkey debian13 "" release_server_test trixie valkey-server 8[.]1)
add_debian13_test(boot_redis debian13 ${release_folder}/packages boot_test trixie redis-server)
add_debian13_test(boot_valkey debian13 ${release_folder}/packages boot_test trixie valkey-server)
