// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "base/message.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace ostrafel {

// The compiler checks the arguments against the format, which it could not with a template; the
// analyzer does not see that va_start and va_copy make a list.
// NOLINTBEGIN(cert-dcl50-cpp,clang-analyzer-valist.Uninitialized)

namespace {

std::string Format(const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int size = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  std::string text(size < 0 ? 0 : static_cast<std::size_t>(size), '\0');
  (void)std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  return text;
}

}  // namespace

MessageState Messages;

void PrintMessage(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  if (Messages.collector == nullptr) {
    (void)std::vfprintf(stderr, format, arguments);
  } else {
    *Messages.collector += Format(format, arguments);
  }
  va_end(arguments);
}

// NOLINTEND(cert-dcl50-cpp,clang-analyzer-valist.Uninitialized)

void PrintLengthError(const char* what) { PrintMessage("Failed to push data: %s.\n", what); }

}  // namespace ostrafel
