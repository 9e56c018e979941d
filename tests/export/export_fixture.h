// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_EXPORT_EXPORT_FIXTURE_H_
#define OSTRAFEL_TESTS_EXPORT_EXPORT_FIXTURE_H_

#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "system/system_fixture.h"

/// Everything in a folder: path below it -> "folder", "link -> TARGET", or "file: CONTENT".
using Listing = std::map<std::string, std::string>;

/// What is in a folder, links not followed, but for the folder of that path below it.
[[nodiscard]] Listing ListingOf(const std::string& folder, const std::string& left_out = "");

/// The paths that are in only one of them or differ, one a line.
[[nodiscard]] std::string Difference(const Listing& was, const Listing& is);

/// Runs of the real ostrafel-export and the real Ostrafel against the real server.
class ExportTest : public SystemTest {
 protected:
  /// What is run goes straight to the server, but for RecordedExport.
  ExportTest();

  /// Runs ostrafel-export with these arguments.
  Finished Export(const std::vector<std::string>& arguments, const RunOptions& options = {});

  /// Likewise, through a Recorder for which plan has planned: recording has what it sent.
  Finished RecordedExport(const std::vector<std::string>& arguments,
                          const RunOptions& options = {});

  /// The process of RecordedExport.
  std::atomic<int> recorded_process{0};

  /// Expects the end of a run that has written so many resources to the folder, and all of them
  /// come back.
  static void ExpectWritten(const Finished& finished, const std::string& resources,
                            const std::string& folder);

  /// True for the end of a run that has lost nothing, but perhaps listed numbers that had to be
  /// clamped when they were stored: these come back as they are now.
  [[nodiscard]] static bool ComesBack(const Finished& finished);

  /// Fills an empty store with what a create of the tree makes, and expects status 0.
  void Create(const std::string& path, const std::string& uri = "/redfish/v1");

  /// Exports the store to a folder of its own, fills the store from that, and exports once more.
  /// Expects that the tree brings the same store back, and the store the same tree. Returns the
  /// tree.
  Listing ExpectRoundTrip(const std::string& uri = "/redfish/v1");

  /// Stores a resource with so many parts that no transaction reads all of them.
  void StoreManyParts(const std::string& key);

  /// The store as text, keys of other types than hash and list with their type alone.
  std::string StoreText();

  /// A folder of the test's own, for what is exported.
  TempDirectory place;
  const std::string out = place.path("out");
};

#endif  // OSTRAFEL_TESTS_EXPORT_EXPORT_FIXTURE_H_
