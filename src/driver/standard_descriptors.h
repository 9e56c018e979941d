// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DRIVER_STANDARD_DESCRIPTORS_H_
#define OSTRAFEL_DRIVER_STANDARD_DESCRIPTORS_H_

namespace ostrafel {

/// Opens /dev/null for every standard descriptor (POSIX: 0, 1 and 2) that the program was started
/// without. Otherwise the next file or connection would get its number, and a message meant for
/// standard error would be sent to the server as a command. To be called before anything is opened.
/// Returns false, and prints "/dev/null: %s\n" with the system's words for it, when /dev/null is
/// needed and cannot be opened: opening anything else would then be dangerous.
[[nodiscard]] bool OccupyStandardDescriptors();

}  // namespace ostrafel

#endif  // OSTRAFEL_DRIVER_STANDARD_DESCRIPTORS_H_
