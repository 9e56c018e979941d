// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <malloc.h>

#include "diff/run.h"

int main(int argc, char** argv) {
#ifdef M_MXFAST
  // Each batch of a load is freed in large blocks. glibc would go through all small blocks that are
  // free whenever one is: a twentieth of the time that a large tree takes.
  (void)mallopt(M_MXFAST, 0);
#endif
  return ostrafel::RunDiff(argc, argv);
}
