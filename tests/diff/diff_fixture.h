// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A tree of the test's own, compared with a store.
#ifndef OSTRAFEL_TESTS_DIFF_DIFF_FIXTURE_H_
#define OSTRAFEL_TESTS_DIFF_DIFF_FIXTURE_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "diff/difference.h"
#include "memory/memory_server.h"
#include "play/play.h"
#include "support/temp_directory.h"

namespace ostrafel {

using Lines = std::vector<std::string>;

class DiffTest : public ::testing::Test {
 protected:
  /// Writes a file of the tree, by its path below the top folder.
  void Write(const std::string& path, const std::string& text) const;

  /// Writes a file below the include folder.
  void Include(const std::string& name, const std::string& text) const;

  /// What a create of the tree leaves in an empty store. Fails when the tree does not load.
  Server Loaded();

  /// What differs between the store and what a create leaves, with places.
  Differences Compare(const Server& stored);

  /// The same as lines "CHANGE KEY RECORD FILE:LINE POINTER"; of a whole key without a record, of
  /// an element with its index; "-" for no place, no line where the file has nothing of it. Files
  /// are relative to the tree or, included ones, begin with "www/".
  Lines Places(const Server& stored);

  /// The lines of differences that have been found.
  [[nodiscard]] Lines LinesOf(const Differences& differences) const;

  std::string uri = "/r";
  std::string path = "tree";  ///< The StaticDataPath, in directory.
  TempDirectory directory;    ///< Holds the tree and "www".

 private:
  Listing Listed();
};

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_DIFF_DIFF_FIXTURE_H_
