// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Memory. The C++ library's operator new calls malloc, and so do the C library's own functions
// (fopen, opendir, popen, getaddrinfo), so that every need of memory is counted here.
//
// The allocator is called by the names that the C library exports beside the usual ones: looking up
// the usual ones might itself need memory.
#include <cstddef>
#include <cstdlib>

#include "faults/interposer/plan.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}

namespace {

using failing_calls::Fails;
using failing_calls::kAllocation;

long live_allocations = 0;

void* Counted(void* memory) {
  if (memory != nullptr) ++live_allocations;
  return memory;
}

}  // namespace

long failing_calls::LiveAllocations() { return live_allocations; }

extern "C" {

void* malloc(std::size_t size) noexcept {
  return Fails(kAllocation) ? nullptr : Counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  return Fails(kAllocation) ? nullptr : Counted(__libc_calloc(count, size));
}

void* realloc(void* memory, std::size_t size) noexcept {
  if (Fails(kAllocation)) return nullptr;
  if (memory == nullptr) return Counted(__libc_realloc(nullptr, size));
  if (size == 0) --live_allocations;
  return __libc_realloc(memory, size);
}

void free(void* memory) noexcept {
  if (memory != nullptr) --live_allocations;
  __libc_free(memory);
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
  return Fails(kAllocation) ? nullptr : Counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
  void* allocated = memalign(alignment, size);
  if (allocated == nullptr) return 12;  // ENOMEM
  *memory = allocated;
  return 0;
}

}  // extern "C"
