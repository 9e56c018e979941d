// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "faults/interposer/crash_report.h"

#include <dlfcn.h>
#include <execinfo.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "faults/interposer/plan.h"

namespace failing_calls {
namespace {

constexpr int kFrameCount = 64;
constexpr int kFramesOfTheHandler = 2;  // the handler itself and what the system put below it

// Where the C library is. What goes wrong in it goes wrong for its caller.
const void* c_library = nullptr;

const char* BaseName(const char* path) {
  const char* slash = std::strrchr(path, '/');
  return slash == nullptr ? path : slash + 1;
}

// Code that the kernel lends to every process; on i386 all system calls go through it.
bool IsTheKernels(const char* module) { return std::strncmp(module, "linux-", 6) == 0; }

extern "C" void ReportCrash(int signal_number) {
  void* frames[kFrameCount] = {};
  const int count = backtrace(frames, kFrameCount);
  const char* module = "unknown";
  const char* function = nullptr;
  const void* base = nullptr;
  for (int i = kFramesOfTheHandler; i < count && function == nullptr; ++i) {
    Dl_info place = {};
    if (dladdr(frames[i], &place) == 0) break;
    if (place.dli_fbase == c_library || IsTheKernels(BaseName(place.dli_fname))) continue;
    if (base != nullptr && place.dli_fbase != base) break;
    base = place.dli_fbase;
    module = BaseName(place.dli_fname);
    function = place.dli_sname;
  }
  failing_calls::FinishReport(module, function == nullptr ? "unknown" : function);
  (void)raise(signal_number);  // the handler is gone by now
}

}  // namespace

void ReportCrashes() {
  // The first use of backtrace loads what it needs, for which a crash is no time.
  void* frame = nullptr;
  (void)backtrace(&frame, 1);
  Dl_info place = {};
  if (dladdr(reinterpret_cast<const void*>(&std::abort), &place) != 0) c_library = place.dli_fbase;
  struct sigaction action = {};
  action.sa_handler = ReportCrash;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  (void)sigemptyset(&action.sa_mask);
  for (const int signal_number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
    (void)sigaction(signal_number, &action, nullptr);
  }
}

}  // namespace failing_calls
