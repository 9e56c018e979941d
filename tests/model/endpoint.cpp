// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/endpoint.h"

#include <algorithm>

namespace model {
namespace {

bool StartsWith(const std::vector<Command>& commands, const std::vector<Command>& first) {
  return first.size() <= commands.size() &&
         std::equal(first.begin(), first.end(), commands.begin());
}

std::string DescribeAround(const std::vector<Command>& commands, std::size_t index) {
  constexpr std::size_t kContext = 3;
  std::string text;
  const std::size_t begin = index < kContext ? 0 : index - kContext;
  for (std::size_t i = begin; i < commands.size() && i <= index + kContext; ++i) {
    text +=
        (i == index ? "  > " : "    ") + std::to_string(i) + ": " + Describe(commands[i]) + "\n";
  }
  return text;
}

}  // namespace

std::vector<Command> CommandsOf(const std::vector<Flight>& flights) {
  std::vector<Command> commands;
  for (const Flight& flight : flights) {
    commands.insert(commands.end(), flight.commands.begin(), flight.commands.end());
  }
  return commands;
}

std::vector<Reply> MemoryEndpoint::Exchange(const std::vector<Command>& flight) {
  std::vector<Reply> replies;
  for (const Command& command : flight) replies.push_back(Execute(store_, command));
  flights_.push_back({flight, replies, false});
  return replies;
}

std::vector<Reply> ReplayEndpoint::Exchange(const std::vector<Command>& flight) {
  if (broken_ || divergence_) return {};
  const std::size_t index = next_++;
  if (index >= recording_.size()) {
    divergence_ = Divergence{index, flight, {}};
    return {};
  }
  const Flight& recorded = recording_[index];
  const bool same =
      recorded.cut_short ? StartsWith(flight, recorded.commands) : flight == recorded.commands;
  if (!same) {
    divergence_ = Divergence{index, flight, recorded.commands};
    return {};
  }
  broken_ = recorded.cut_short || recorded.replies.size() < recorded.commands.size();
  return recorded.replies;
}

std::optional<Divergence> ReplayEndpoint::FirstDivergence() const {
  if (divergence_) return divergence_;
  if (next_ < recording_.size()) return Divergence{next_, {}, recording_[next_].commands};
  return std::nullopt;
}

std::string Describe(const Command& command) {
  std::string text;
  for (std::size_t i = 0; i < command.size(); ++i) text += (i == 0 ? "" : " | ") + command[i];
  return text;
}

std::string Describe(const Divergence& divergence) {
  const std::vector<Command>& expected = divergence.expected;
  const std::vector<Command>& recorded = divergence.recorded;
  std::size_t index = 0;
  while (index < expected.size() && index < recorded.size() && expected[index] == recorded[index]) {
    ++index;
  }
  return "flight " + std::to_string(divergence.flight) + ", command " + std::to_string(index) +
         "\n  expected, of " + std::to_string(expected.size()) + ":\n" +
         DescribeAround(expected, index) + "  recorded, of " + std::to_string(recorded.size()) +
         ":\n" + DescribeAround(recorded, index);
}

}  // namespace model
