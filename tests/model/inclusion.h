// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_INCLUSION_H_
#define OSTRAFEL_TESTS_MODEL_INCLUSION_H_

#include <string>

#include "model/json_value.h"

namespace model {

/// Replaces the members of a root object with "&&File" by those of the named file below the include
/// root, and keeps "&&File". False, with a message in `err`, when that cannot be done.
bool ResolveInclusion(JsonValue& root, const std::string& include_root, std::string& err);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_INCLUSION_H_
