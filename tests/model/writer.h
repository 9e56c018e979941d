// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_WRITER_H_
#define OSTRAFEL_TESTS_MODEL_WRITER_H_

#include <string>

#include "model/json_value.h"
#include "model/run_state.h"

namespace model {

/// Queues the records of a root object. A key is written once per run. Every member is tried; the
/// result is that of the last one.
bool WriteRoot(RunState& run, const std::string& key, const JsonValue& root);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_WRITER_H_
