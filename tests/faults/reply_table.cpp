#include "faults/reply_table.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <set>
#include <utility>

#include "model/endpoint.h"
#include "model/run_model.h"
#include "support/program.h"

namespace {

// A run takes some hundredths of a second. The bound leaves room for a busy machine.
constexpr std::chrono::seconds kPatience(5);

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
  for (const model::Flight& flight : flights) {
    for (const model::Command& command : flight.commands) text += model::Describe(command) + "\n";
  }
  return text;
}

std::string ReplaceFile(std::string text, const std::string& file) {
  const std::string placeholder = "<file>";
  const std::size_t found = text.find(placeholder);
  return found == std::string::npos ? text : text.replace(found, placeholder.size(), file);
}

}  // namespace

bool ProgramHasWideLong() {
  constexpr int kElfClass = 4;
  constexpr char kClass64 = 2;
  std::ifstream program(ProgramCommand({}).back(), std::ios::binary);
  char elf_class = 0;
  (void)program.seekg(kElfClass).get(elf_class);
  return elf_class == kClass64;
}

Outcome Success(const std::string& after) { return {kSuccessLine, "", 0, after}; }

Outcome Failure(const std::string& err, const std::string& after) { return {"", err, 255, after}; }

FaultedRun WrongReplies::Play(const Scenario& scenario, const ReplyKind* kind) {
  const std::size_t index = CountLines(scenario.before);
  const auto plan = [&](ScriptedServer& server) {
    for (const auto& [command, bytes] : scenario.answers) server.AnswerCommand(command, bytes);
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
      ProgramHasWideLong() == (sizeof(long) == 8);
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
                             const Outcome& outcome) {
  SCOPED_TRACE(Describe(kind));
  const FaultedRun run = Play(scenario, &kind);
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
  const FaultedRun sound = Play(scenario, nullptr);
  const std::string beginning = scenario.before + scenario.faulted;
  ASSERT_EQ(CommandLines(sound.recording.flights).substr(0, beginning.size()), beginning);

  std::set<Identity> seen;
  for (const Row& row : table) {
    bool applies = false;
    for (const Kinds& kinds : row.kinds) {
      for (const ReplyKind& kind : kinds) {
        if (!seen.insert(IdentityOf(kind)).second) continue;
        applies = true;
        CheckCell(scenario, kind, row.outcome);
      }
    }
    EXPECT_TRUE(applies) << "a row without a kind of its own, sending\n" << row.outcome.after;
  }
  for (const ReplyKind& kind : EveryKind()) {
    EXPECT_EQ(seen.count(IdentityOf(kind)), 1U) << "no row for " << Describe(kind);
  }
  RecordProperty("cells", static_cast<int>(seen.size()));
  RecordProperty("slowest_milliseconds", static_cast<int>(slowest_.count()));
}
