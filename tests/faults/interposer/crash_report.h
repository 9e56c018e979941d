// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_FAULTS_INTERPOSER_CRASH_REPORT_H_
#define OSTRAFEL_TESTS_FAULTS_INTERPOSER_CRASH_REPORT_H_

namespace failing_calls {

/// Lets a memory fault or an abort be reported before it ends the process: the file name, without
/// its folder, of the program or library that it happened in, and the innermost function there that
/// has a name at run time. Functions that are known to their own module alone have none. What
/// happens in the C library is told of its caller.
void ReportCrashes();

}  // namespace failing_calls

#endif  // OSTRAFEL_TESTS_FAULTS_INTERPOSER_CRASH_REPORT_H_
