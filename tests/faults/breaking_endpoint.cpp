// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "faults/breaking_endpoint.h"

#include <algorithm>
#include <limits>

std::vector<model::Reply> BreakingEndpoint::Exchange(const std::vector<model::Command>& flight) {
  is_broken_ = is_broken_ || (where_.is_before_next_flight && answered_ == where_.replies);
  if (is_broken_) return {};
  std::vector<model::Reply> replies;
  for (const model::Command& command : flight) {
    replies.push_back(command.front() == "AUTH" ? model::StatusReply("OK")
                                                : model::Execute(store_, command));
  }
  is_broken_ = replies.size() > where_.replies - answered_;
  replies.resize(std::min(replies.size(), where_.replies - answered_));
  answered_ += replies.size();
  flights_.push_back({flight, replies, is_broken_});
  return replies;
}

Prediction Predict(const std::vector<std::string>& arguments, const model::Store& store,
                   const std::string& password, const Break& where) {
  BreakingEndpoint endpoint(store, where);
  Prediction prediction;
  if (!password.empty() && endpoint.Exchange({{"AUTH", password}}).empty()) {
    prediction.outcome = {"", "Failed to connect to Redis\n", 255};
  } else {
    prediction.outcome = model::RunModel(endpoint, arguments);
  }
  prediction.flights = endpoint.Flights();
  prediction.store = endpoint.Contents();
  return prediction;
}

Prediction PredictWhole(const std::vector<std::string>& arguments, const model::Store& store,
                        const std::string& password) {
  return Predict(arguments, store, password, {std::numeric_limits<std::size_t>::max(), false});
}
