# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# What people install is tested where an installation puts it, not in the build folder.

set(installed ${PROJECT_BINARY_DIR}/installed)
add_test(NAME installation COMMAND sh -c
  "rm -rf '${installed}' && '${CMAKE_COMMAND}' --install '${PROJECT_BINARY_DIR}' --prefix '${installed}'")
set_tests_properties(installation PROPERTIES FIXTURES_SETUP installation COST 2000)

set(tools_scripts "")
if(OSTRAFEL_TOOLS)
  set(tools_scripts check/hook_test check/matcher_test)
endif()
foreach(script
    ${tools_scripts}
    completion/bash_test
    completion/zsh_test
    man/manual_test
    service/examine_test
    service/publish_test
    service/reading_test
    service/units_test
    service/users_test
    service/verify_test
    yocto/layer_test
    yocto/tree_check_test)
  string(REPLACE "/" "." name ${script})
  add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/tests/${script})
  set_tests_properties(${name} PROPERTIES
    FIXTURES_REQUIRED installation
    ENVIRONMENT OSTRAFEL_INSTALLED=${installed}
    SKIP_REGULAR_EXPRESSION "${skipped_regex}"
    TIMEOUT 600)
endforeach()
set_tests_properties(service.reading_test PROPERTIES COST 500)  # takes longest
