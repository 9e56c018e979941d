// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_LAYOUT_H_
#define OSTRAFEL_TESTS_MODEL_LAYOUT_H_

#include <string>

#include "model/json_value.h"

namespace model {

inline const std::string kObjectMarker = "&&Object ";
inline const std::string kObjectRefMarker = "&&ObjectRef ";
inline const std::string kArrayMarker = "&&Array ";

/// The key with every run of slashes made one slash and with "&&" in front (never twice).
std::string NormalizedKey(std::string key);

/// The key of a member or element below the parent key.
std::string DerivedKey(const std::string& parent_key, const std::string& name);

/// The pattern of all keys below the key: a slash is added unless the key ends with one.
std::string PatternBelow(const std::string& key);

/// True when the string begins with the prefix.
bool StartsWith(const std::string& text, const std::string& prefix);

/// True for the names whose string values are stored without quotes.
bool IsReserved(const std::string& name);

/// The string with a backslash before every backslash and double quote.
std::string Escaped(const std::string& text);

/// The stored text of a scalar; empty for an object or an array.
std::string RenderedValue(const JsonValue& value);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_LAYOUT_H_
