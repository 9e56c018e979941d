// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Stores in memory that hold what another store holds.
#ifndef OSTRAFEL_TESTS_MEMORY_SERVER_COPY_H_
#define OSTRAFEL_TESTS_MEMORY_SERVER_COPY_H_

#include <string>

#include "memory/memory_server.h"
#include "model/memory_store.h"

namespace ostrafel {

/// A store in memory with these contents.
Server CopyOf(const model::Store& contents);

/// All of the store as text, a line for each field and element; of a key of another type only that
/// it is there. An empty hash or list, which no server holds, has a line, too.
std::string Dump(const Server& server);

/// The lines of two dumps that only one of them has, and whether only their order differs. Empty
/// when the dumps are equal.
std::string Difference(const std::string& real, const std::string& in_memory);

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_MEMORY_SERVER_COPY_H_
