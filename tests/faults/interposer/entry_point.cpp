// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The start of main. What happens after its end, such as the writing of coverage figures by exit
// handlers, is no part of the run.
#include "faults/interposer/next.h"
#include "faults/interposer/plan.h"

namespace {

using Main = int (*)(int, char**, char**);

Main program_main = nullptr;

int RunAndReport(int argc, char** argv, char** environment) {
  const int status = program_main(argc, argv, environment);
  failing_calls::FinishReport();
  return status;
}

}  // namespace

extern "C" int __libc_start_main(Main main, int argc, char** argv, void (*initialise)(),
                                 void (*finish)(), void (*finish_loader)(), void* stack_end) {
  program_main = main;
  using Start = int(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
  return failing_calls::Next<Start>("__libc_start_main")(RunAndReport, argc, argv, initialise,
                                                         finish, finish_loader, stack_end);
}
