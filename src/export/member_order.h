// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_EXPORT_MEMBER_ORDER_H_
#define OSTRAFEL_EXPORT_MEMBER_ORDER_H_

#include <string_view>

namespace ostrafel {

/// True when a member named a stands before one named b: "@odata.type", "@odata.id", other names
/// that begin with "@"; "Id", "Name", "Description", other names; names that begin with "&&".
/// Within these in the order of their bytes, so that an annotation follows its member.
[[nodiscard]] bool StandsBefore(std::string_view a, std::string_view b);

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_MEMBER_ORDER_H_
