// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_FAULTS_INTERPOSER_NEXT_H_
#define OSTRAFEL_TESTS_FAULTS_INTERPOSER_NEXT_H_

#include <dlfcn.h>

namespace failing_calls {

/// The function of this name that the program would have called without this library. Looking it up
/// calls none of the functions that can fail, but for memory (see allocation.cpp, which does not
/// use it).
template <typename Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace failing_calls

#endif  // OSTRAFEL_TESTS_FAULTS_INTERPOSER_NEXT_H_
