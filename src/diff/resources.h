// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DIFF_RESOURCES_H_
#define OSTRAFEL_DIFF_RESOURCES_H_

#include <string>

#include "memory/memory_server.h"

namespace ostrafel {

/// The resource that a key belongs to: the key itself, or of a derived key that of either store
/// which its path leads through last. Where there is none, the key less its "&&".
[[nodiscard]] std::string ResourceOf(const std::string& key, const Server& stored,
                                     const Server& wanted);

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_RESOURCES_H_
