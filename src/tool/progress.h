// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// How far a check has come, for who waits for it.
#ifndef OSTRAFEL_TOOL_PROGRESS_H_
#define OSTRAFEL_TOOL_PROGRESS_H_

#include <chrono>
#include <cstddef>
#include <functional>

namespace ostrafel {

/// Told again and again how many of all files are done.
using TakeProgress = std::function<void(std::size_t done, std::size_t all)>;

/// A line on standard error, written over and over, and gone at the end.
class ProgressLine {
 public:
  using Clock = std::chrono::steady_clock;

  /// Shows nothing where it is not wanted, nor before this time has passed.
  explicit ProgressLine(bool is_wanted, Clock::duration patience = std::chrono::seconds(1));
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine();

  /// Shows "WORD DONE of ALL files". Not every time: as often as a person can read.
  void Show(const char* word, std::size_t done, std::size_t all);

  /// Takes the line away, for what else is printed on the terminal.
  void Erase();

 private:
  bool is_wanted_;
  Clock::time_point next_;  ///< When the line is shown again.
  int width_ = 0;           ///< Of what is shown.
};

}  // namespace ostrafel

#endif  // OSTRAFEL_TOOL_PROGRESS_H_
