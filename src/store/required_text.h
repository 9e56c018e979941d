#ifndef OSTRAFEL_STORE_REQUIRED_TEXT_H_
#define OSTRAFEL_STORE_REQUIRED_TEXT_H_

#include <string>

/// Returns text, which is NUL-terminated. Raises logic_error for a null one, as the making of a
/// std::string does, by making one.
[[nodiscard]] inline const char* RequiredText(const char* text) {
  if (text == nullptr) (void)std::string(text);
  return text;
}

#endif  // OSTRAFEL_STORE_REQUIRED_TEXT_H_
