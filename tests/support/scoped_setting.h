// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_SUPPORT_SCOPED_SETTING_H_
#define OSTRAFEL_TESTS_SUPPORT_SCOPED_SETTING_H_

#include <string>

#include "support/test_store.h"

/// Gives a setting of the server a value until the end, however the test ends.
class ScopedSetting {
 public:
  /// Works through the caller's connection, which must outlive the object. Throws
  /// std::runtime_error when the server knows no such setting or refuses the value.
  ScopedSetting(TestStore* store, const std::string& name, const std::string& value);

  /// Restores the value that the setting had before.
  ~ScopedSetting();

  ScopedSetting(const ScopedSetting&) = delete;
  ScopedSetting& operator=(const ScopedSetting&) = delete;

 private:
  TestStore* const store_;
  const std::string name_;
  std::string before_;
};

#endif  // OSTRAFEL_TESTS_SUPPORT_SCOPED_SETTING_H_
