// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Makes a failing sequence of runs small enough to be read.
#ifndef OSTRAFEL_TESTS_MODEL_SHRINK_H_
#define OSTRAFEL_TESTS_MODEL_SHRINK_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "model/random_tree.h"

namespace model {

/// One run of a sequence: the action, the tree that it loads, the key of its top folder.
struct PlannedRun {
  std::string action;
  std::string uri;
  Tree tree;
};

/// Runs that follow each other on one store, which is empty before the first.
using Sequence = std::vector<PlannedRun>;

/// The sequence for a failure message: each command, with TREE for the directory, and below it the
/// text of each file.
std::string Describe(const Sequence& sequence, const std::string& file_name = "index.json");

/// What a search for a smaller sequence found.
struct Shrunk {
  Sequence sequence;
  std::size_t attempts = 0;  ///< How often `fails` was asked.
  bool is_whole = false;     ///< False when the time ran out: there may be smaller ones.
};

/// Looks for a smaller sequence for which `fails` still holds, as it must for the given one. Drops
/// runs, then folders, then what the documents hold, shortens names, paths and ids, each by itself
/// and everywhere at once, and starts over until nothing can be dropped or the time is up. A
/// sequence is smaller when its description is shorter. A call of `fails` is not interrupted.
Shrunk Shrink(const Sequence& sequence, const std::function<bool(const Sequence&)>& fails,
              std::chrono::milliseconds time_limit);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_SHRINK_H_
