// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Which call is to fail, and how many calls there were.
//
// The library is preloaded (LD_PRELOAD) into the program under test, stands in front of the
// functions below and passes every call on, but for those that the environment names:
//   OSTRAFEL_FAILING_CALL    a name of Call, as in kNames (plan.cpp); without it nothing fails
//   OSTRAFEL_FAILING_INDEX   the first call of it to fail, counted from 0
//   OSTRAFEL_FAILING_MODE    "once", or "onwards" for that call and all later ones
//   OSTRAFEL_FAILING_ERRNO   the error's number; without it, one that the call really fails with
//   OSTRAFEL_FAILING_REPORT  a file that gets at the end of main or at a crash, for each Call, its
//                            name and count, a line each; after a crash "crash module function"
//                            (see crash_report.h); at the end of the process "live" and how many
//                            allocations were never freed
//
// Calls are counted from the initialisation of the program's own variables to the end of main. The
// loader and the C++ library have been at work before, exit handlers are at work after; what they
// call passes uncounted. These variables and LD_PRELOAD are removed from the environment first, so
// that the commands that the program starts know nothing of them.
//
// What cannot be reached: calls that the C library makes to itself, except those for memory. fgets
// reads without a call of the read that is counted here. Therefore fread, fgets and fgetc fail
// themselves, as they do after a failed read: with nothing, errno set, the stream's error indicator
// set.
#ifndef OSTRAFEL_TESTS_FAULTS_INTERPOSER_PLAN_H_
#define OSTRAFEL_TESTS_FAULTS_INTERPOSER_PLAN_H_

namespace failing_calls {

/// What can fail. One name stands for all functions that do the same.
enum Call {
  kAllocation,  ///< malloc, calloc, realloc, posix_memalign, aligned_alloc, memalign
  kOpen,        ///< open, openat
  kFopen,
  kFread,
  kFgets,
  kFgetc,
  kPuts,
  kRead,
  kWrite,
  kSocket,
  kConnect,
  kOpendir,
  kReaddir,
  kClose,  ///< Closes the file and then reports a failure.
  kStat,
  kPopen,
  kPclose,         ///< Closes the pipe and then reports a failure.
  kObjectClear,    ///< json_object_clear, which does not clear.
  kObjectUpdate,   ///< json_object_update, which does not update.
  kObjectIterKey,  ///< json_object_iter_key, which answers null.
  kObjectSetNew,   ///< json_object_set_new, which releases the value.
  kNew,            ///< operator new, which throws std::length_error("planned").
  kCallCount,
};

/// Counts a call. Returns true, with errno set, when it is to fail.
[[nodiscard]] bool Fails(Call call);

/// Ends the counting, so that no more calls fail, and writes the report.
void FinishReport();

/// Likewise, after a crash in module (a file name) under its function.
void FinishReport(const char* module, const char* function);

/// How many allocations are not freed at the moment. Defined where allocations can fail.
long LiveAllocations();

}  // namespace failing_calls

#endif  // OSTRAFEL_TESTS_FAULTS_INTERPOSER_PLAN_H_
