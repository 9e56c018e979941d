# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# Sanitizers and coverage change every object file alike, so they are set for the whole build.
if(OSTRAFEL_SANITIZERS)
  add_compile_options(-fsanitize=${OSTRAFEL_SANITIZERS} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${OSTRAFEL_SANITIZERS})
endif()
if(OSTRAFEL_COVERAGE)
  add_compile_options(--coverage -fno-inline)
  add_link_options(--coverage)
endif()
if(OSTRAFEL_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
