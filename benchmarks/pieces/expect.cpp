// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "pieces/expect.h"

#include <cstdio>
#include <cstdlib>

namespace ostrafel {

void Expect(bool is_met, const char* expectation) {
  if (is_met) return;
  (void)std::fprintf(stderr, "benchmark_pieces: not met: %s\n", expectation);
  std::exit(EXIT_FAILURE);
}

}  // namespace ostrafel
