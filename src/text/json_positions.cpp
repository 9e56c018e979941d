// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/json_positions.h"

namespace ostrafel {

std::map<std::string, ValuePosition> LocateValues(std::string_view /*text*/,
                                                  const std::set<std::string>& /*pointers*/) {
  return {};
}

std::vector<DuplicateMember> FindDuplicateMembers(std::string_view /*text*/) { return {}; }

Position LocateError(std::string_view /*text*/, const json_error_t& /*error*/) { return {}; }

}  // namespace ostrafel
