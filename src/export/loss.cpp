// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/loss.h"

#include <utility>

#include "tool/grouped.h"

namespace ostrafel {

namespace {

std::string Shown(std::string_view name) {
  if (name.size() <= kLongestShown) return std::string(name);
  constexpr std::size_t end = kLongestShown / 2;
  return std::string(name.substr(0, end)) + "... (" + Counted(name.size(), "byte") + ") ..." +
         std::string(name.substr(name.size() - end));
}

}  // namespace

Loss::Loss(std::string_view key_name, std::string_view record_name, std::string why)
    : key(Shown(key_name)), record(Shown(record_name)), reason(std::move(why)) {}

}  // namespace ostrafel
