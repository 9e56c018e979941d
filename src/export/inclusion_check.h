// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_EXPORT_INCLUSION_CHECK_H_
#define OSTRAFEL_EXPORT_INCLUSION_CHECK_H_

#include <string>

#include "export/document.h"

namespace ostrafel {

/// True when a load of the file at path, a document with "&&File", makes these contents. The file
/// that it names, of which this depends, is read as a load does (IncludeRoot), but for what is
/// neither a file nor a folder: that is not opened, and false.
[[nodiscard]] bool ComesBack(const std::string& path, const std::string& listed_key,
                             const Contents& contents);

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_INCLUSION_CHECK_H_
