// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TOOL_QUOTED_H_
#define OSTRAFEL_TOOL_QUOTED_H_

#include <string>

namespace ostrafel {

/// The text in double quotes, as sentences have keys and names.
[[nodiscard]] inline std::string Quoted(const std::string& text) { return '"' + text + '"'; }

}  // namespace ostrafel

#endif  // OSTRAFEL_TOOL_QUOTED_H_
