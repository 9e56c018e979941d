// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Which keys of a store belong together, told without what ostrafel-export knows of records.
#ifndef OSTRAFEL_TESTS_EXPORT_REACHED_KEYS_H_
#define OSTRAFEL_TESTS_EXPORT_REACHED_KEYS_H_

#include <set>
#include <string>
#include <vector>

#include "export/store_keys.h"
#include "memory/memory_server.h"

namespace ostrafel {

/// These keys, and all that their records lead to. A record of a hash leads to each key of the
/// store that it ends with, behind a blank, if a create can have meant that one: it is a part in
/// its place, or an object that says its key. So what a create wrote is among them, whichever of
/// the blanks in a record parts the name from the target.
[[nodiscard]] std::set<std::string> ReachedFrom(const Server& server,
                                                std::vector<std::string> keys);

/// All that is in the scope, and what its records lead to.
[[nodiscard]] std::set<std::string> ReachedFrom(const Server& server, const ExportScope& scope);

/// What a create of an export of the scope has to leave in an empty store when nothing was listed:
/// what is reached from the scope and, of the rest, what has come along to after, which is what it
/// did leave.
[[nodiscard]] Server WhatIsExported(const Server& before, const ExportScope& scope,
                                    const Server& after);

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_EXPORT_REACHED_KEYS_H_
