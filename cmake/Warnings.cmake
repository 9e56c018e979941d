# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# Linked privately by all code of the project, never by anything that others would build against.
add_library(ostrafel_warnings INTERFACE)
target_compile_options(ostrafel_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
