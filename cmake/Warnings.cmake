# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# Linked privately by all code of the project, never by anything that others would build against. The
# presets make errors of warnings, with CMAKE_COMPILE_WARNING_AS_ERROR; a plain build does not, as a
# compiler that is newer than the sources may warn of more.
add_library(ostrafel_warnings INTERFACE)
target_compile_options(ostrafel_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
