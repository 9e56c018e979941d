// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_FAULTS_FAILING_SERIES_H_
#define OSTRAFEL_TESTS_FAULTS_FAILING_SERIES_H_

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "faults/failing_calls.h"
#include "model/memory_store.h"

/// One whole run, over and over, each time with another call of it that fails.
///
/// The run loads a small tree that has every kind of member, a byte-order mark, inclusions, nested
/// folders and one without a file, into a server that demands a password and holds an older tree in
/// which many members have another shape.
class FailingSeries : public FailingCallsTest {
 protected:
  FailingSeries();
  ~FailingSeries() override;

  /// Takes an end that none of the general rules allows, and returns true when the rules of the
  /// program make just this of the failure. It is asked of every run, and may expect more of it
  /// than the general rules do.
  using Exception = std::function<bool(const FailingCalls& failing, const FailingRun& run)>;

  /// Goes through every call of this name, or through an even sample of at most so many of them
  /// (all of them with OSTRAFEL_TEST_SEEDS of 10 or more), once with that call failing alone and
  /// once with it and all later ones. Every run must end, within half a minute, and
  ///   - with success and what a run without a failure says and stores, or
  ///   - with status 255 and nothing but documented messages, or
  ///   - aborted by the C++ library for want of memory, when memory is what fails, or
  ///   - crashed in a library, in one of the functions that are known for it, likewise, or
  ///   - as is_excepted allows.
  /// A run that comes to the end of main must have freed what a run without a failure frees.
  void FailEveryCall(const std::string& call, const Exception& is_excepted = {},
                     unsigned long sample = ~0UL);

  /// Likewise, with single failures of this errno only, and a sample of 25.
  void FailEveryCallWith(int error, const std::string& call, const Exception& is_excepted);

  /// Makes the older tree's content the server's.
  void RestoreStore();

  /// The arguments of the run.
  std::vector<std::string> Arguments(const std::string& of_action) const;

  /// What a run over each choice of the tree's files stores, as text.
  std::set<std::string> StoresOfSomeFiles(const std::string& of_action);

  /// What a run without a failure stores, as text. Set by FailEveryCall.
  std::string clean_store;

  /// What the server holds before each run, as text.
  std::string old_store;

  /// What is loaded: the tree, unless a test names another.
  std::string path;

  /// The key that it goes to. The older tree is at the first value of it.
  std::string uri;

  /// "create" or "update". FailEveryCall runs both, one after the other.
  std::string action;

 private:
  void WriteTree(const TempDirectory& directory, unsigned files) const;
  void FailEachOf(const std::string& call, unsigned long step, bool is_onwards, int error,
                  const Exception& is_excepted);
  void Judge(const FailingCalls& failing, const FailingRun& run, const Exception& is_excepted);

  model::Store old_store_;
  FailingRun clean_run_;
  int runs_ = 0;
};

/// Fails unless every line of err is a message of the program.
void ExpectDocumentedMessages(const std::string& err);

#endif  // OSTRAFEL_TESTS_FAULTS_FAILING_SERIES_H_
