// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The text that an export makes of one resource, at /r.
#ifndef OSTRAFEL_TESTS_EXPORT_DOCUMENT_TEXTS_H_
#define OSTRAFEL_TESTS_EXPORT_DOCUMENT_TEXTS_H_

#include <cstddef>
#include <string>
#include <vector>

#include "export/memory_export.h"
#include "memory/memory_server.h"

namespace ostrafel {

using Texts = std::vector<std::string>;

/// What the export of a store with one resource at /r says of it.
[[nodiscard]] MemoryExport Export(const Server& server);

/// The document of /r. Expects that all of it comes back, but for these losses (TextsOf).
[[nodiscard]] std::string TextOf(const Server& server, const Texts& losses = {});

/// The same on one line.
[[nodiscard]] std::string Compact(const std::string& text);

/// What a create of one file at this key makes.
[[nodiscard]] Server Created(const std::string& text, const std::string& uri = "/r");

/// Arrays in each other, so many, in the one member of the root.
[[nodiscard]] std::string Nested(std::size_t arrays, const std::string& innermost);

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_EXPORT_DOCUMENT_TEXTS_H_
