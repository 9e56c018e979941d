// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_FAULTS_BREAKING_ENDPOINT_H_
#define OSTRAFEL_TESTS_FAULTS_BREAKING_ENDPOINT_H_

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "model/endpoint.h"
#include "model/memory_store.h"
#include "model/run_model.h"

/// Where a connection breaks.
struct Break {
  /// So many replies arrive whole.
  std::size_t replies = 0;
  /// False: the server goes away when the next command has come. True: it goes away after the last
  /// of these replies, so that a later flight reaches nobody.
  bool is_before_next_flight = false;
};

/// A server in memory whose connection breaks. It carries out every flight that it gets, be it
/// answered or not.
class BreakingEndpoint : public model::Endpoint {
 public:
  BreakingEndpoint(model::Store store, const Break& where)
      : store_(std::move(store)), where_(where) {}

  std::vector<model::Reply> Exchange(const std::vector<model::Command>& flight) override;

  /// The flights that arrived.
  const std::vector<model::Flight>& Flights() const { return flights_; }

  const model::Store& Contents() const { return store_; }

 private:
  model::Store store_;
  const Break where_;
  std::vector<model::Flight> flights_;
  std::size_t answered_ = 0;
  bool is_broken_ = false;
};

/// What a run must do whose connection breaks.
struct Prediction {
  model::Outcome outcome;
  std::vector<model::Flight> flights;
  model::Store store;
};

/// What the model does. With a password, AUTH is the first command.
Prediction Predict(const std::vector<std::string>& arguments, const model::Store& store,
                   const std::string& password, const Break& where);

/// Likewise, of a run whose connection holds.
Prediction PredictWhole(const std::vector<std::string>& arguments, const model::Store& store,
                        const std::string& password);

#endif  // OSTRAFEL_TESTS_FAULTS_BREAKING_ENDPOINT_H_
