// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Tables that state what every answer to one command makes of a run.
#ifndef OSTRAFEL_TESTS_FAULTS_REPLY_TABLE_H_
#define OSTRAFEL_TESTS_FAULTS_REPLY_TABLE_H_

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "faults/fault_fixture.h"
#include "faults/reply_kinds.h"
#include "model/memory_store.h"

// What the program says of a failure, in full.
inline constexpr const char* kNoConnection = "Failed to connect to Redis\n";
inline constexpr const char* kNoReply = "Failed to get reply\n";
inline constexpr const char* kTreeNotRemoved = "Fail to remove resource tree\n";
inline constexpr const char* kBadRemoval =
    "Some errors occur while removing data from database\n"
    "The data in database would be incorrect\n";
inline constexpr const char* kBadHash =
    "Some errors occur while creating hash data into database\n"
    "The data in database would be incorrect\n";
inline constexpr const char* kBadList =
    "Some errors occur while creating list data into database\n"
    "The data in database would be incorrect\n";
inline constexpr const char* kRestNotWritten = ">>> Fail to write rest of data into redis\n";
/// "<file>" stands for the document's path.
inline constexpr const char* kFileFailed = ">>> Error occurs while parsing file <file>\n";

/// One run, and the command of it that gets the answers of a table. Commands are written one a
/// line, with bars between the arguments: "HSET | /r | A | 1\n".
struct Scenario {
  std::string action;
  std::string document;  ///< Loaded to the key /r.
  model::Store store;    ///< What the server holds before.
  std::string before;    ///< The commands up to the one in question.
  std::string faulted;   ///< That command.
  std::string password = {};
  std::map<std::size_t, std::string> answers = {};  ///< Of commands before it, counted from 0.
};

/// How a run ends, and what it sends after the command in question, whether in one pipeline with it
/// or later.
struct Outcome {
  std::string out;
  std::string err;
  int status;
  std::string after;
};

/// Success, nothing on standard error.
Outcome Success(const std::string& after);

/// Status 255, nothing on standard output.
Outcome Failure(const std::string& err, const std::string& after);

/// These kinds of answer have this outcome, except for kinds that an earlier row names.
struct Row {
  std::vector<Kinds> kinds;
  Outcome outcome;
};

class WrongReplies : public FaultTest {
 protected:
  /// Plays the scenario with every kind of the table (by default with some of each Kinds; with all
  /// when OSTRAFEL_TEST_SEEDS is 10 or more), and compares outputs, status and all
  /// commands. The table must have an outcome for EveryKind and no row that never applies. The
  /// model, which knows nothing of the table, must come to the same end. Every second answer is
  /// delivered byte by byte, as far as it is short and that makes no difference.
  void Check(const Scenario& scenario, const std::vector<Row>& table);

 private:
  void CheckCell(const Scenario& scenario, const ReplyKind& kind, const Outcome& outcome,
                 bool is_byte_by_byte);
  void CheckModel(const Scenario& scenario, const ReplyKind& kind, const FaultedRun& run);
  FaultedRun Play(const Scenario& scenario, const ReplyKind* kind, bool is_byte_by_byte);

  std::string file_;
  std::chrono::milliseconds slowest_{0};
};

#endif  // OSTRAFEL_TESTS_FAULTS_REPLY_TABLE_H_
