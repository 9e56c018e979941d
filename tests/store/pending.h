// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What an operation leaves waiting, whatever store the program links.
#ifndef OSTRAFEL_TESTS_STORE_PENDING_H_
#define OSTRAFEL_TESTS_STORE_PENDING_H_

#include <map>
#include <string>
#include <vector>

#include "document/document.h"

namespace ostrafel {

/// What waits in HashBatch and in ListBatch.
std::map<std::string, std::map<std::string, std::string>> PendingFields();
std::map<std::string, std::vector<std::string>> PendingValues();

/// The pending removals, as the commands that a flush would send.
std::string PendingRemovalsText();

/// A value from its JSON text, which must be an object or an array.
Document Parse(const std::string& json);

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_STORE_PENDING_H_
