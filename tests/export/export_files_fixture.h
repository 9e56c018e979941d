// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A small store to export, beside files that an export must leave alone.
#ifndef OSTRAFEL_TESTS_EXPORT_EXPORT_FILES_FIXTURE_H_
#define OSTRAFEL_TESTS_EXPORT_EXPORT_FILES_FIXTURE_H_

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "export/export_fixture.h"

// A store of three resources, and what is around the folder of the export.
class ExportFiles : public ExportTest {
 protected:
  ExportFiles() {
    (void)store.Run("HSET | /r | Name | \"A\"");
    (void)store.Run("HSET | /r/b | Name | \"B\"");
    (void)store.Run("HSET | /r/b/c | Name | \"C\"");
    place.Write("beside/file", "stays");
    std::filesystem::create_symlink("beside/file", place.path("link"));
    around = ListingOf(place.path());
  }

  // Expects a message of the program, status 2, and that nothing is there but what was.
  void ExpectRefusal(const Finished& finished, const std::string& message) {
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.err, "ostrafel-export: " + message);
    EXPECT_EQ(finished.status, 2);
    EXPECT_EQ(Difference(around, ListingOf(place.path())), "");
  }

  // What is there beside the folder of the export.
  [[nodiscard]] Listing Around() const { return ListingOf(place.path(), "out"); }

  // Remembers what is there by now.
  void Remember() { around = ListingOf(place.path()); }

  const std::string kA = "{\n    \"Name\": \"A\"\n}\n";
  const std::string kB = "{\n    \"Name\": \"B\"\n}\n";
  const std::string kC = "{\n    \"Name\": \"C\"\n}\n";
  const Listing kTree = {{"./index.json", "file: " + kA},
                         {"./b", "folder"},
                         {"b/index.json", "file: " + kB},
                         {"b/c", "folder"},
                         {"b/c/index.json", "file: " + kC}};
  Listing around;
};

#endif  // OSTRAFEL_TESTS_EXPORT_EXPORT_FILES_FIXTURE_H_
