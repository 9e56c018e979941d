// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What ostrafel-check prints in JSON, read back.
#ifndef OSTRAFEL_TESTS_CHECK_CHECK_OUTPUT_H_
#define OSTRAFEL_TESTS_CHECK_CHECK_OUTPUT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "memory/memory_server.h"
#include "play/play.h"

namespace ostrafel {

/// What the summary of --format json says of the loads.
struct Summary {
  std::size_t keys = 0;
  std::size_t records = 0;
  Played create;
  Played update;
};

/// The summary in what --format json printed; nothing when it is not there, or is not as it should
/// be.
std::optional<Summary> SummaryIn(const std::string& text);

/// The store that --print-store printed; nothing when that is no store, or when keys or fields are
/// not in byte order.
std::optional<Server> StoreIn(const std::string& text);

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_CHECK_CHECK_OUTPUT_H_
