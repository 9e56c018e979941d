// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_SYSTEM_MODEL_CHECK_H_
#define OSTRAFEL_TESTS_SYSTEM_MODEL_CHECK_H_

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "model/shrink.h"
#include "system/system_fixture.h"

/// Runs of the real program beside runs of the model: the same arguments, the same store before.
class ModelCheckedTest : public SystemTest {
 protected:
  /// Runs the program and the model and compares
  ///   - the outputs, the status and every command, with the division into flights, of the program
  ///     with those of the model when it gets the server's own answers;
  ///   - the whole store afterwards with what the model makes of the store before, in memory.
  /// The second takes a deterministic answer to SCAN and KEYS for granted: the order in which keys
  /// are found does not matter for what is stored.
  ///
  /// Returns what differs, as text; empty when nothing does. What SystemTest checks of every run
  /// counts as a difference.
  std::string Compare(const std::vector<std::string>& arguments);

  /// Likewise, but a difference fails the test.
  void RunBoth(const std::vector<std::string>& arguments);

  /// Plays the sequence on an empty store and returns the first difference that `compare` finds
  /// after the run that makes it; empty when there is none.
  std::string Play(const model::Sequence& sequence,
                   const std::function<std::string(const std::vector<std::string>&)>& compare);

  /// Plays the sequence and compares it with the model.
  std::string Play(const model::Sequence& sequence);

  /// The failure message for a sequence in which `play` finds a difference: the smallest such
  /// sequence that is found within the time limit, and the difference in that one.
  static std::string Explain(const model::Sequence& sequence,
                             const std::function<std::string(const model::Sequence&)>& play,
                             std::chrono::seconds time_limit = std::chrono::seconds(30));
};

#endif  // OSTRAFEL_TESTS_SYSTEM_MODEL_CHECK_H_
