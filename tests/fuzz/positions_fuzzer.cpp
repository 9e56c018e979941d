// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Where things stand in a text. The input is a text, with anything in it. text/position_checks.h
// says what must hold for the positions of its values and duplicate members, or of the error,
// beside what jansson makes of it.
#include <string>
#include <string_view>

#include "fuzz/arena.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/machine.h"
#include "text/position_checks.h"

void TestOneInput(std::string_view input) {
  // What finds the positions takes memory that the sanitizer watches.
  const AllocateInArena allocate_in_arena(false);
  ExpectSame("the positions", "", ostrafel::PositionFault(input));
}
