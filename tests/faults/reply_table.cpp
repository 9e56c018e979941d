// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "faults/reply_table.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <utility>

#include "model/endpoint.h"
#include "model/run_model.h"
#include "support/program.h"
#include "support/test_factor.h"

namespace {

// A run takes some hundredths of a second. A hang is what is looked for, not a machine that is busy
// with other things.
constexpr std::chrono::seconds kPatience(30);

// The longest answer, in bytes, that is also delivered byte by byte: each costs a switch to the
// program and back.
constexpr std::size_t kLongestDelivered = 200;

using Identity = std::pair<std::string, bool>;

Identity IdentityOf(const ReplyKind& kind) { return {kind.bytes, kind.closes}; }

std::size_t CountLines(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// The recording as the program saw it: nothing arrives from the broken reply on. What is no reply
// to the program may look like one to the recorder, which is not as strict.
std::vector<model::Flight> BrokenAt(std::size_t command, std::vector<model::Flight> flights) {
  std::size_t first = 0;
  for (model::Flight& flight : flights) {
    const std::size_t size = flight.commands.size();
    if (command < first + size) {
      flight.replies.resize(std::min(flight.replies.size(), command - first));
      flight.cut_short = true;
    }
    first += size;
  }
  return flights;
}

std::string CommandLines(const std::vector<model::Flight>& flights) {
  std::string text;
  for (const model::Command& command : model::CommandsOf(flights)) {
    text += model::Describe(command) + "\n";
  }
  return text;
}

// What comes before a close is sent at once. So must two replies be: a client that has got one and
// not yet the other sends its next command.
bool CanComeByteByByte(const ReplyKind& kind) {
  return kind.bytes.size() < kLongestDelivered && !kind.closes &&
         kind.nature != ReplyKind::Nature::kDouble;
}

std::string ReplaceFile(std::string text, const std::string& file) {
  const std::string placeholder = "<file>";
  const std::size_t found = text.find(placeholder);
  return found == std::string::npos ? text : text.replace(found, placeholder.size(), file);
}

}  // namespace

Outcome Success(const std::string& after) { return {kSuccessLine, "", 0, after}; }

Outcome Failure(const std::string& err, const std::string& after) { return {"", err, 255, after}; }

FaultedRun WrongReplies::Play(const Scenario& scenario, const ReplyKind* kind,
                              bool is_byte_by_byte) {
  const std::size_t index = CountLines(scenario.before);
  const auto plan = [&](ScriptedServer& server) {
    for (const auto& [command, bytes] : scenario.answers) server.AnswerCommand(command, bytes);
    if (is_byte_by_byte) server.DeliverByteByByte();
    if (kind == nullptr) return;
    server.AnswerCommand(index, kind->bytes);
    if (kind->closes) server.CloseAfterReply(index, Ending::kFin);
  };
  return Run({scenario.action, file_, "/r"}, scenario.store, plan, Transport::kUnix,
             scenario.password);
}

// The model begins when the connection stands, reads texts to their end and not to a NUL, and pairs
// every command with its own reply.
void WrongReplies::CheckModel(const Scenario& scenario, const ReplyKind& kind,
                              const FaultedRun& run) {
  const bool is_comparable =
      scenario.password.empty() && kind.nature != ReplyKind::Nature::kDouble &&
      (kind.nature == ReplyKind::Nature::kBroken || kind.bytes.find('\0') == std::string::npos) &&
      ProgramHas64Bits() == (sizeof(long) == 8);
  if (!is_comparable) return;
  std::vector<model::Flight> flights = run.recording.flights;
  if (kind.nature == ReplyKind::Nature::kBroken) {
    flights = BrokenAt(CountLines(scenario.before), std::move(flights));
  }
  model::ReplayEndpoint replay(std::move(flights));
  const model::Outcome outcome = model::RunModel(replay, {scenario.action, file_, "/r"});
  if (const auto divergence = replay.FirstDivergence()) {
    ADD_FAILURE() << "the model: " << model::Describe(*divergence);
  }
  EXPECT_EQ(run.finished.out, outcome.out) << "says the model";
  EXPECT_EQ(run.finished.err, outcome.err) << "says the model";
  EXPECT_EQ(run.finished.status, outcome.status) << "says the model";
}

void WrongReplies::CheckCell(const Scenario& scenario, const ReplyKind& kind,
                             const Outcome& outcome, bool is_byte_by_byte) {
  SCOPED_TRACE(Describe(kind) + (is_byte_by_byte ? ", byte by byte" : ""));
  const FaultedRun run = Play(scenario, &kind, is_byte_by_byte);
  EXPECT_EQ(run.finished.out, outcome.out);
  EXPECT_EQ(run.finished.err, ReplaceFile(outcome.err, file_));
  EXPECT_EQ(run.finished.status, outcome.status);
  EXPECT_EQ(CommandLines(run.recording.flights),
            scenario.before + scenario.faulted + outcome.after);
  EXPECT_EQ(run.recording.connections, 1);
  if (!HasLauncher()) {
    EXPECT_LT(run.elapsed, kPatience);
  }
  CheckModel(scenario, kind, run);
  slowest_ = std::max(slowest_, run.elapsed);
}

void WrongReplies::Check(const Scenario& scenario, const std::vector<Row>& table) {
  file_ = tree.Write("document.json", scenario.document);

  // Without the fault the run comes to the command in question.
  const FaultedRun sound = Play(scenario, nullptr, false);
  const std::string beginning = scenario.before + scenario.faulted;
  ASSERT_EQ(CommandLines(sound.recording.flights).substr(0, beginning.size()), beginning);

  std::set<Identity> seen;
  int cells = 0;
  int byte_by_byte = 0;
  for (const Row& row : table) {
    bool applies = false;
    for (const Kinds& kinds : row.kinds) {
      // All that a row names have one outcome: of many, some are played, others in other tables.
      const std::size_t step = TestFactor() >= 10 ? 1 : (kinds.size() + 5) / 6;
      for (std::size_t i = 0; i < kinds.size(); ++i) {
        const ReplyKind& kind = kinds[i];
        if (!seen.insert(IdentityOf(kind)).second) continue;
        applies = true;
        if ((i + beginning.size()) % step != 0) continue;
        ++cells;
        const bool is_byte_by_byte = cells % 2 == 0 && CanComeByteByByte(kind);
        if (is_byte_by_byte) ++byte_by_byte;
        CheckCell(scenario, kind, row.outcome, is_byte_by_byte);
      }
    }
    EXPECT_TRUE(applies) << "a row without a kind of its own, sending\n" << row.outcome.after;
  }
  for (const ReplyKind& kind : EveryKind()) {
    EXPECT_EQ(seen.count(IdentityOf(kind)), 1U) << "no row for " << Describe(kind);
  }
  EXPECT_GT(byte_by_byte, 5);
  RecordProperty("byte_by_byte", byte_by_byte);
  RecordProperty("cells", cells);
  RecordProperty("slowest_milliseconds", static_cast<int>(slowest_.count()));
}
