// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The connection breaks at every place of a run where it can, and the run ends as the model says.
// What each command makes of a lost reply is stated in the tables of wrong replies.
//
// A cut is made over a Unix socket or TCP, and by FIN or RST. By default the four take turns from
// cut to cut, and within a pipeline or a reply every third place is cut, or every twelfth where
// each run goes through a launcher; with OSTRAFEL_TEST_SEEDS at 10 or more, every place is, in all
// four ways.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "faults/breaking_endpoint.h"
#include "faults/eventful_tree.h"
#include "faults/fault_fixture.h"
#include "support/program.h"
#include "support/resp.h"
#include "support/sandbox.h"
#include "support/test_factor.h"

namespace {

const std::string kPassword = "secret";

bool CutsEverything() { return TestFactor() >= 10; }

// True of the places within a pipeline or a reply that are cut.
bool IsCut(std::size_t place) {
  const std::size_t step = HasLauncher() ? 12 : 3;
  return CutsEverything() || place % step == 0;
}

// A command in its run: which flight it is in, and where there.
struct Place {
  std::string name;
  std::size_t flight = 0;
  std::size_t index = 0;
  std::size_t flight_size = 0;
};

std::vector<Place> Places(const std::vector<model::Flight>& flights) {
  std::vector<Place> places;
  for (std::size_t flight = 0; flight < flights.size(); ++flight) {
    const std::vector<model::Command>& commands = flights[flight].commands;
    for (std::size_t i = 0; i < commands.size(); ++i) {
      places.push_back({eventful::CommandName(commands[i]), flight, i, commands.size()});
    }
  }
  return places;
}

class CutEverywhere : public FaultTest {
 protected:
  struct Way {
    Transport transport;
    Ending ending;
  };

  // A run that is cut again and again.
  struct Subject {
    std::vector<std::string> arguments;
    model::Store store;
    Prediction whole;
    std::chrono::milliseconds elapsed = {};  // of the run that is not cut
  };

  CutEverywhere() {
    for (const Transport transport : Transports()) {
      ways_.push_back({transport, Ending::kFin});
      ways_.push_back({transport, Ending::kRst});
    }
  }

  void TearDown() override {
    FaultTest::TearDown();
    RecordProperty("cuts", static_cast<int>(cuts_));
    RecordProperty("runs", static_cast<int>(runs_));
  }

  Subject MakeSubject(const std::string& action, const std::string& path, model::Store store) {
    Subject subject = {{action, path, eventful::kUri}, std::move(store), {}, {}};
    subject.whole = PredictWhole(subject.arguments, subject.store, kPassword);
    EXPECT_EQ(subject.whole.outcome.err, "");
    const FaultedRun run =
        Run(subject.arguments, subject.store, nullptr, Transport::kUnix, kPassword);
    ExpectSame(run, subject.whole, "");
    subject.elapsed = run.elapsed;
    EXPECT_EQ(run.recording.closed_by_client, 1);
    return subject;
  }

  void WriteGeneration(eventful::Generation generation) { eventful::WriteFiles(tree, generation); }

  // Cuts the run in the ways whose turn it is, and compares each with the prediction, which it
  // returns.
  model::Outcome Cut(const Subject& subject, const Break& where, std::size_t turn,
                     const std::function<void(ScriptedServer&, Ending)>& plan) {
    const Prediction expected = Predict(subject.arguments, subject.store, kPassword, where);
    ++cuts_;
    for (std::size_t i = 0; i < ways_.size(); ++i) {
      if (!CutsEverything() && i != turn % ways_.size()) continue;
      const Way& way = ways_[i];
      SCOPED_TRACE(way.transport == Transport::kUnix ? "Unix socket" : "TCP");
      SCOPED_TRACE(way.ending == Ending::kFin ? "FIN" : "RST");
      FaultedRun run;
      // The cut comes no later than the whole run would have ended, and the end within a second. A
      // machine at its limits may take longer for anything, but hardly three times.
      const auto limit = subject.elapsed + std::chrono::seconds(1);
      int attempts_left = 3;
      do {
        run = Run(
            subject.arguments, subject.store,
            [&](ScriptedServer& server) { plan(server, way.ending); }, way.transport, kPassword);
        ++runs_;
      } while (run.elapsed > limit && --attempts_left > 0 && !HasLauncher());
      EXPECT_GT(attempts_left, 0) << "took " << run.elapsed.count() << " ms";
      ExpectSame(run, expected, Announcement(way.transport));
    }
    return expected.outcome;
  }

  static void ExpectSame(const FaultedRun& run, const Prediction& expected,
                         const std::string& announcement) {
    EXPECT_EQ(run.finished.out, expected.outcome.out);
    EXPECT_EQ(run.finished.err, announcement + expected.outcome.err);
    EXPECT_EQ(run.finished.status, expected.outcome.status);
    ASSERT_EQ(Describe(run.recording.flights), Describe(expected.flights));
    for (std::size_t i = 0; i < expected.flights.size(); ++i) {
      EXPECT_TRUE(run.recording.flights[i].replies == expected.flights[i].replies) << i;
    }
    EXPECT_EQ(model::Dump(run.store), model::Dump(expected.store));
  }

  void CutBeforeReplies(const Subject& subject) {
    const std::vector<Place> places = Places(subject.whole.flights);
    for (std::size_t k = 0; k < places.size(); ++k) {
      const bool is_inside = places[k].index > 0 && places[k].index + 1 < places[k].flight_size;
      if (is_inside && !IsCut(k)) continue;
      SCOPED_TRACE(subject.arguments.front() + ", cut before reply " + std::to_string(k) + ", to " +
                   places[k].name);
      Cut(subject, {k, false}, k,
          [&](ScriptedServer& server, Ending ending) { server.CloseBeforeReply(k, ending); });
      if (HasFailure()) return;
    }
  }

  // Cuts after the bytes of the replies, from none of them to all.
  void CutAfterBytes(const Subject& subject) {
    std::vector<std::size_t> ends;  // of each reply, in the stream of them
    std::size_t total = 0;
    for (const model::Flight& flight : subject.whole.flights) {
      for (const model::Reply& reply : flight.replies) {
        ends.push_back(total += Format(reply).size());
      }
    }
    for (std::size_t bytes = 0; bytes <= total; ++bytes) {
      SCOPED_TRACE(subject.arguments.front() + ", cut after byte " + std::to_string(bytes) +
                   " of " + std::to_string(total));
      Break where;
      where.replies = static_cast<std::size_t>(std::upper_bound(ends.begin(), ends.end(), bytes) -
                                               ends.begin());
      where.is_before_next_flight = where.replies > 0 && ends[where.replies - 1] == bytes;
      if (!where.is_before_next_flight && !IsCut(bytes)) continue;
      Cut(subject, where, bytes,
          [&](ScriptedServer& server, Ending ending) { server.CloseAfterBytes(bytes, ending); });
      if (HasFailure()) return;
    }
  }

  static std::set<std::string> Names(const std::vector<Subject>& subjects) {
    std::set<std::string> names;
    for (const Subject& subject : subjects) {
      for (const Place& place : Places(subject.whole.flights)) names.insert(place.name);
    }
    return names;
  }

 private:
  std::vector<Way> ways_;
  std::size_t cuts_ = 0;
  std::size_t runs_ = 0;
};

TEST_F(CutEverywhere, BeforeEachReplyOfACreateAndAnUpdateThatDoEverything) {
  WriteGeneration(eventful::Generation::kSecond);
  model::Store old = PredictWhole({"create", tree.path(), eventful::kUri}, {}, "").store;
  old["/elsewhere"].value = model::List{"stays"};
  WriteGeneration(eventful::Generation::kFirst);
  const Subject create = MakeSubject("create", tree.path(), old);
  ASSERT_NO_FATAL_FAILURE(CutBeforeReplies(create));

  model::Store loaded = create.whole.store;
  eventful::AddStaleKeys(eventful::kInlineId, &loaded);
  WriteGeneration(eventful::Generation::kSecond);
  const Subject update = MakeSubject("update", tree.path(), loaded);
  ASSERT_NO_FATAL_FAILURE(CutBeforeReplies(update));

  EXPECT_GE(Places(create.whole.flights).size() + Places(update.whole.flights).size(), 500U);
  EXPECT_EQ(Names({create, update}), eventful::kEveryCommand);
}

TEST_F(CutEverywhere, AfterEachByteOfTheRepliesOfASmallCreateAndUpdate) {
  using eventful::Generation;
  model::Store old;
  old[eventful::kUri].value = model::Hash{{"Old", "1"}};
  old["&&/redfish/v1/L"].value = model::List{"1"};
  const Subject create =
      MakeSubject("create", tree.Write("a.json", eventful::SmallDocument(Generation::kFirst)), old);
  ASSERT_NO_FATAL_FAILURE(CutAfterBytes(create));

  model::Store loaded = create.whole.store;
  eventful::AddStaleKeys(eventful::kSmallInlineId, &loaded);
  const Subject update = MakeSubject(
      "update", tree.Write("b.json", eventful::SmallDocument(Generation::kSecond)), loaded);
  ASSERT_NO_FATAL_FAILURE(CutAfterBytes(update));

  EXPECT_EQ(Names({create, update}), eventful::kEveryCommand);
}

// With nothing to delete and nothing to load, a create is three questions, and an answer that does
// not come is no failure.
TEST_F(CutEverywhere, AnEmptyCreateSucceedsAllTheSame) {
  const Subject create = MakeSubject("create", tree.MakeFolder("empty"), {});
  for (std::size_t k = 1; k <= 3; ++k) {
    for (std::size_t turn = 0; turn < 4; ++turn) {
      const model::Outcome outcome =
          Cut(create, {k, false}, turn,
              [&](ScriptedServer& server, Ending ending) { server.CloseBeforeReply(k, ending); });
      EXPECT_EQ(outcome.out, kSuccessLine);
      EXPECT_EQ(outcome.err, "");
      EXPECT_EQ(outcome.status, 0);
    }
  }
}

}  // namespace
