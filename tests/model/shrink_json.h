// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_SHRINK_JSON_H_
#define OSTRAFEL_TESTS_MODEL_SHRINK_JSON_H_

#include <functional>
#include <string>

#include "model/json_value.h"

namespace model {

/// The value as JSON without needless spaces, its members in their order.
std::string JsonText(const JsonValue& value);

/// Makes the value simpler step by step as long as `accepts` takes the whole result: replaces it,
/// or a value inside it, by 0, an empty container or something inside; drops members and elements;
/// shortens names and texts. Offers only values that are simpler than the last accepted one, and no
/// object with two members of one name. Returns the last value that was accepted, `value` itself
/// when none was.
JsonValue ShrinkJson(const JsonValue& value,
                     const std::function<bool(const JsonValue& simpler)>& accepts);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_SHRINK_JSON_H_
