// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Memory for what checks the program. AddressSanitizer's allocator takes most of the time of a run,
// and the model and the servers allocate more than the program does. Their memory comes from an
// arena that is emptied as a whole; the program's own keeps coming from the sanitizer.
#ifndef OSTRAFEL_TESTS_FUZZ_ARENA_H_
#define OSTRAFEL_TESTS_FUZZ_ARENA_H_

/// While it is in scope, operator new and jansson take memory from the arena (true), or from
/// AddressSanitizer (false, as outside of any scope). Memory may be released anywhere.
class AllocateInArena {
 public:
  explicit AllocateInArena(bool is_on);
  ~AllocateInArena();
  AllocateInArena(const AllocateInArena&) = delete;
  AllocateInArena& operator=(const AllocateInArena&) = delete;

 private:
  const bool was_on_;
};

/// Lets jansson allocate as said above. To be called before its first use.
void UseArenaForJson();

/// Forgets all that is in the arena; nothing of it may be used any more.
void EmptyArena();

#endif  // OSTRAFEL_TESTS_FUZZ_ARENA_H_
