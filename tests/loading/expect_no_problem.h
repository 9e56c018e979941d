// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_LOADING_EXPECT_NO_PROBLEM_H_
#define OSTRAFEL_TESTS_LOADING_EXPECT_NO_PROBLEM_H_

#include <gtest/gtest.h>

#include <string>

#include "loading/static_data_walk.h"

namespace ostrafel {

/// What a walk is given that shall meet no problem.
inline void ExpectNoProblem(PathProblem /*problem*/, const std::string& text) {
  ADD_FAILURE() << text;
}

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_LOADING_EXPECT_NO_PROBLEM_H_
