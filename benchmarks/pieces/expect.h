// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_BENCHMARKS_PIECES_EXPECT_H_
#define OSTRAFEL_BENCHMARKS_PIECES_EXPECT_H_

namespace ostrafel {

/// Ends the program with a message and status 1 unless is_met. A benchmark that did not do what it
/// claims to measure must not report a time. Call it outside of what is measured.
void Expect(bool is_met, const char* expectation);

}  // namespace ostrafel

#endif  // OSTRAFEL_BENCHMARKS_PIECES_EXPECT_H_
