// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_DIFF_APPLY_FIXTURE_H_
#define OSTRAFEL_TESTS_DIFF_APPLY_FIXTURE_H_

#include <cstddef>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "model/memory_store.h"
#include "model/random_tree.h"
#include "system/system_fixture.h"

/// Runs of the real ostrafel-diff and the real Ostrafel against the real server.
class ApplyTest : public SystemTest {
 protected:
  /// What is run goes straight to the server, but for RecordedDiff.
  ApplyTest();

  /// Runs ostrafel-diff with these arguments.
  Finished Diff(const std::vector<std::string>& arguments, const RunOptions& options = {});

  /// Likewise, through a Recorder for which plan has planned: recording has what it sent.
  Finished RecordedDiff(const std::vector<std::string>& arguments);

  /// What a run of Ostrafel makes of a store. Expects status 0 unless status is given, which then
  /// is the run's.
  model::Store After(const std::string& action, const model::Store& before, const std::string& path,
                     const std::string& uri, int* status = nullptr);

  /// Expects that a second --apply finds both equal and writes nothing.
  void ExpectNothingLeft(const std::vector<std::string>& arguments);

  /// The flight that is nothing but EXEC in the last recording: where the store is changed.
  [[nodiscard]] std::size_t ExecFlight() const;

  /// The commands of the last recording that write, by their names.
  [[nodiscard]] std::vector<std::string> Writes() const;
};

/// True for a key that a create at this URI, without characters of patterns, removes.
[[nodiscard]] bool IsRemovedBy(const std::string& uri, const std::string& key);

/// What two stores have that the other has not, as text; empty when they are equal.
[[nodiscard]] std::string StoreDifference(const model::Store& real, const model::Store& expected);

/// A number from 0 to below limit.
[[nodiscard]] std::size_t Random(std::mt19937_64& generator, std::size_t limit);

/// Changes something in one key of the store: a field, an element, the type, the name, or all of
/// it. New keys are below uri. Returns how many keys were changed: 2 when one was renamed, 0 when
/// the chosen change is none.
std::size_t ChangeAtRandom(std::mt19937_64& generator, const std::string& uri, model::Store* store);

/// What a load of a random tree left, other clients have changed, and other clients have stored
/// beside it, some of it under keys of any bytes.
[[nodiscard]] model::Store RandomStore(std::mt19937_64& generator,
                                       const model::RandomTreeOptions& options);

#endif  // OSTRAFEL_TESTS_DIFF_APPLY_FIXTURE_H_
