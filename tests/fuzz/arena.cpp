// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "fuzz/arena.h"

#include <jansson.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>

namespace {

constexpr std::size_t kArenaSize = std::size_t{64} << 20;
constexpr std::size_t kAlignment = alignof(std::max_align_t);

alignas(std::max_align_t) std::array<char, kArenaSize> Arena;
std::size_t ArenaUsed = 0;

// Of one thread: libFuzzer watches time and memory in another.
thread_local bool IsOn = false;

void* Allocate(std::size_t size) {
  const std::size_t rounded = (size + kAlignment - 1) / kAlignment * kAlignment;
  if (!IsOn || rounded < size || rounded > kArenaSize - ArenaUsed) return std::malloc(size);
  void* memory = Arena.data() + ArenaUsed;
  ArenaUsed += rounded;
  return memory;
}

void Release(void* memory) {
  const std::less<const void*> is_before;
  const bool is_in_arena =
      !is_before(memory, Arena.data()) && is_before(memory, Arena.data() + kArenaSize);
  if (!is_in_arena) std::free(memory);
}

void* AllocateOrThrow(std::size_t size) {
  void* memory = Allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

AllocateInArena::AllocateInArena(bool is_on) : was_on_(IsOn) { IsOn = is_on; }

AllocateInArena::~AllocateInArena() { IsOn = was_on_; }

void UseArenaForJson() { json_set_alloc_funcs(Allocate, Release); }

void EmptyArena() { ArenaUsed = 0; }

// These take the place of AddressSanitizer's. It does not see any more whether what new made is
// given to free.
void* operator new(std::size_t size) { return AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return Allocate(size);
}
void operator delete(void* memory) noexcept { Release(memory); }
void operator delete[](void* memory) noexcept { Release(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { Release(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { Release(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { Release(memory); }
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept { Release(memory); }
