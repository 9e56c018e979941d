// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_SUPPORT_SCOPED_VARIABLE_H_
#define OSTRAFEL_TESTS_SUPPORT_SCOPED_VARIABLE_H_

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

/// Gives a variable of the environment a value, or none, until the end.
class ScopedVariable {
 public:
  ScopedVariable(std::string name, const std::optional<std::string>& value)
      : name_(std::move(name)) {
    if (const char* before = std::getenv(name_.c_str())) before_ = before;
    Set(value);
  }
  ~ScopedVariable() { Set(before_); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  void Set(const std::optional<std::string>& value) const {
    if (value) {
      (void)setenv(name_.c_str(), value->c_str(), 1);
    } else {
      (void)unsetenv(name_.c_str());
    }
  }

  const std::string name_;
  std::optional<std::string> before_;
};

#endif  // OSTRAFEL_TESTS_SUPPORT_SCOPED_VARIABLE_H_
