// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_STORE_REQUIRED_TEXT_H_
#define OSTRAFEL_STORE_REQUIRED_TEXT_H_

#include <string>

namespace ostrafel {

/// Returns text, or raises for a null one the logic_error that std::string raises, with its
/// message.
[[nodiscard]] inline const char* RequiredText(const char* text) {
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.StringChecker): that is the purpose
  if (text == nullptr) (void)std::string(text);
  return text;
}

}  // namespace ostrafel

#endif  // OSTRAFEL_STORE_REQUIRED_TEXT_H_
