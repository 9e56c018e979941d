// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_LAYOUT_DECIMAL_TEXT_H_
#define OSTRAFEL_LAYOUT_DECIMAL_TEXT_H_

#include <cstdint>
#include <string>

namespace ostrafel {

/// The shortest decimal text of value: "-" for negatives, no leading zeros, no grouping.
[[nodiscard]] std::string DecimalText(std::int32_t value);

}  // namespace ostrafel

#endif  // OSTRAFEL_LAYOUT_DECIMAL_TEXT_H_
