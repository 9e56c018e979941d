// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TEXT_TEXT_FILE_H_
#define OSTRAFEL_TEXT_TEXT_FILE_H_

#include <string>

namespace ostrafel {

/// The bytes of the file at path, as many as can be read; none when it cannot be opened or is no
/// regular file: a pipe would be waited for, and a device may have no end.
[[nodiscard]] std::string ReadTextFile(const std::string& path);

}  // namespace ostrafel

#endif  // OSTRAFEL_TEXT_TEXT_FILE_H_
