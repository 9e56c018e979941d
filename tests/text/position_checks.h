// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What holds for the positions in any text, beside jansson.
#ifndef OSTRAFEL_TESTS_TEXT_POSITION_CHECKS_H_
#define OSTRAFEL_TESTS_TEXT_POSITION_CHECKS_H_

#include <string>
#include <string_view>

namespace ostrafel {

/// Says what is wrong with the positions that src/text finds in text; empty when nothing is.
///
/// Where jansson accepts the text: each value is found, and parsed from there it is equal to
/// jansson's; the same with its name; a few values are found where all are; there are duplicate
/// members if jansson sees some, and each place of one holds its name, the last one that of the
/// value.
///
/// Where jansson refuses the text: the line is jansson's, and what its message quotes stands at the
/// position.
std::string PositionFault(std::string_view text);

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_TEXT_POSITION_CHECKS_H_
