// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A string or a list that is longer than the C++ library allows: more than half of all memory that
// can be addressed. No real one gets there. The exception then comes out of the append that needs
// memory, and from there it is thrown here.
#include <cstddef>
#include <new>
#include <stdexcept>

#include "faults/interposer/next.h"
#include "faults/interposer/plan.h"

namespace {

// The names of operator new(std::size_t), and of the one that is also told an alignment, in a
// library.
constexpr bool kSizeIsLong = sizeof(std::size_t) > sizeof(unsigned int);
constexpr const char* kOperatorNew = kSizeIsLong ? "_Znwm" : "_Znwj";
constexpr const char* kAlignedOperatorNew =
    kSizeIsLong ? "_ZnwmSt11align_val_t" : "_ZnwjSt11align_val_t";

void FailAsPlanned() {
  if (failing_calls::Fails(failing_calls::kNew)) throw std::length_error("planned");
}

}  // namespace

void* operator new(std::size_t size) {
  FailAsPlanned();
  static auto* const next = failing_calls::Next<void*(std::size_t)>(kOperatorNew);
  return next(size);
}

void* operator new(std::size_t size, std::align_val_t alignment) {
  FailAsPlanned();
  static auto* const next =
      failing_calls::Next<void*(std::size_t, std::align_val_t)>(kAlignedOperatorNew);
  return next(size, alignment);
}
