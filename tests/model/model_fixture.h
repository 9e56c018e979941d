// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_MODEL_FIXTURE_H_
#define OSTRAFEL_TESTS_MODEL_MODEL_FIXTURE_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "model/endpoint.h"
#include "model/memory_store.h"
#include "model/run_model.h"
#include "model/scratch_folder.h"
#include "support/program.h"

namespace model {

/// Plays runs of the model on a store in memory and files in a scratch folder.
class ModelTest : public ::testing::Test {
 protected:
  /// Plays one run and keeps its flights.
  Outcome Play(const std::vector<std::string>& arguments) {
    MemoryEndpoint endpoint(store);
    Outcome outcome = RunModel(endpoint, arguments, folder.Path() + "/www/");
    flights = endpoint.Flights();
    return outcome;
  }

  /// Loads one document to the key.
  Outcome Create(const std::string& key, const std::string& json) {
    return Play({"create", folder.Write("document.json", json), key});
  }

  /// Merges one document into the key.
  Outcome Update(const std::string& key, const std::string& json) {
    return Play({"update", folder.Write("document.json", json), key});
  }

  /// Every command of the last run, one a line, flights parted by "--".
  std::string Stream() const {
    std::string text;
    for (const Flight& flight : flights) {
      text += text.empty() ? "" : "--\n";
      for (const Command& command : flight.commands) text += Describe(command) + "\n";
    }
    return text;
  }

  /// The sizes of the last run's flights.
  std::vector<std::size_t> FlightSizes() const {
    std::vector<std::size_t> sizes;
    for (const Flight& flight : flights) sizes.push_back(flight.commands.size());
    return sizes;
  }

  ScratchFolder folder;
  Store store;
  std::vector<Flight> flights;
};

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_MODEL_FIXTURE_H_
