// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Standard output, to which all that was asked for goes. Trouble goes through PrintMessage.
#ifndef OSTRAFEL_TOOL_OUTPUT_H_
#define OSTRAFEL_TOOL_OUTPUT_H_

#include <string>

namespace ostrafel {

/// Opens /dev/null, for reading only, for every standard descriptor that the program was started
/// without: no file that is opened later gets its number, and writing to it still fails.
void ReserveStandardDescriptors();

/// Writes the text, with whatever bytes are in it. False, after a message on standard error, when
/// not all of it was taken.
[[nodiscard]] bool WriteOutput(const std::string& text);

}  // namespace ostrafel

#endif  // OSTRAFEL_TOOL_OUTPUT_H_
