// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_SYSTEM_FILE_CAPABILITIES_H_
#define OSTRAFEL_TESTS_SYSTEM_FILE_CAPABILITIES_H_

/// For RunOptions::in_child: the program may open what its user may, though it is root's.
void GiveUpFileCapabilities();

#endif  // OSTRAFEL_TESTS_SYSTEM_FILE_CAPABILITIES_H_
