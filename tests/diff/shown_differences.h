// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_DIFF_SHOWN_DIFFERENCES_H_
#define OSTRAFEL_TESTS_DIFF_SHOWN_DIFFERENCES_H_

#include <cstddef>
#include <string>

#include "model/memory_store.h"

/// Compares ostrafel-diff's output as JSON with what differs between two stores: keys and fields
/// one by one; of a list, that the differences lead from one to the other. Returns what is wrong,
/// as text; empty when nothing is.
[[nodiscard]] std::string DifferenceToShown(const std::string& json, const model::Store& stored,
                                            const model::Store& wanted);

/// How many differences such output has.
[[nodiscard]] std::size_t CountShown(const std::string& json);

#endif  // OSTRAFEL_TESTS_DIFF_SHOWN_DIFFERENCES_H_
