// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What the program tells the person who runs it.
#ifndef OSTRAFEL_BASE_MESSAGE_H_
#define OSTRAFEL_BASE_MESSAGE_H_

#include <string>

namespace ostrafel {

/// Where messages go. One thread uses it.
struct MessageState {
  std::string* collector = nullptr;  ///< Gets them instead of standard error, unless it is null.
};
extern MessageState Messages;

/// Prints a message on standard error, or appends it to Messages.collector. format and what follows
/// are those of printf(3). A failure to print is not reported: nobody would see it.
[[gnu::format(printf, 1, 2)]] void PrintMessage(const char* format, ...);

/// Prints "Failed to push data: %s.\n" with what a length_error of the standard library says: a
/// string or a list has grown longer than it takes.
void PrintLengthError(const char* what);

}  // namespace ostrafel

#endif  // OSTRAFEL_BASE_MESSAGE_H_
