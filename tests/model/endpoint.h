// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_ENDPOINT_H_
#define OSTRAFEL_TESTS_MODEL_ENDPOINT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/memory_store.h"
#include "model/reply.h"

namespace model {

/// What went over the connection between two waits of the client: the commands that it sent before
/// it read anything (one blocking command, or a pipeline) and their replies, in order.
struct Flight {
  std::vector<Command> commands;
  std::vector<Reply> replies;
  /// The connection broke during this flight: only the first of the commands may have arrived (none
  /// at all when it broke before), and replies may be missing.
  bool cut_short = false;
};

/// The commands of all flights, in order.
std::vector<Command> CommandsOf(const std::vector<Flight>& flights);

/// What a modelled run talks to.
class Endpoint {
 public:
  virtual ~Endpoint() = default;

  /// Sends the commands and returns their replies in order. Fewer replies than commands: the
  /// connection broke after the last one.
  virtual std::vector<Reply> Exchange(const std::vector<Command>& flight) = 0;
};

/// A server in memory. Keeps every flight, so that a test can look at the command stream.
class MemoryEndpoint : public Endpoint {
 public:
  /// Works on the caller's store, which must outlive the endpoint.
  explicit MemoryEndpoint(Store& store) : store_(store) {}

  std::vector<Reply> Exchange(const std::vector<Command>& flight) override;

  /// Every flight so far.
  const std::vector<Flight>& Flights() const { return flights_; }

 private:
  Store& store_;
  std::vector<Flight> flights_;
};

/// Where a modelled run and a recorded one part: the number of the flight (from 0), what the model
/// sends in it and what the recording holds. Empty commands: one of the two has no such flight.
struct Divergence {
  std::size_t flight = 0;
  std::vector<Command> expected;
  std::vector<Command> recorded;
};

/// A recording of a real run that answers as the server did then. The model's k-th flight gets the
/// replies of the recorded k-th flight, as long as both hold the same commands. From the first
/// divergence on nothing is answered. Neither is anything after a recorded flight in which the
/// connection broke; what the model sends from there on never left the real client and is not
/// compared.
class ReplayEndpoint : public Endpoint {
 public:
  explicit ReplayEndpoint(std::vector<Flight> recording) : recording_(std::move(recording)) {}

  std::vector<Reply> Exchange(const std::vector<Command>& flight) override;

  /// The first difference between the model's commands and the recorded ones, none when there is
  /// not any. To be asked after the run: recorded flights that the model did not send count.
  std::optional<Divergence> FirstDivergence() const;

 private:
  std::vector<Flight> recording_;
  std::size_t next_ = 0;
  bool broken_ = false;
  std::optional<Divergence> divergence_;
};

/// The command as one line, with bars between the arguments: "HSET | /r | A | 1".
std::string Describe(const Command& command);

/// The divergence for a failure message: the number of the flight, the sizes, and the commands of
/// both sides around the first one that differs.
std::string Describe(const Divergence& divergence);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_ENDPOINT_H_
