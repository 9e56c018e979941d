// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/progress.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "tool/grouped.h"

namespace ostrafel {

namespace {

constexpr auto kInterval = std::chrono::milliseconds(100);

}  // namespace

ProgressLine::ProgressLine(bool is_wanted, Clock::duration patience)
    : is_wanted_(is_wanted), next_(Clock::now() + patience) {}

ProgressLine::~ProgressLine() { Erase(); }

void ProgressLine::Show(const char* word, std::size_t done, std::size_t all) {
  if (!is_wanted_ || Clock::now() < next_) return;
  next_ = Clock::now() + kInterval;
  const std::string numbers = Grouped(done) + " of " + Grouped(all);
  // The blanks cover what a longer line has left.
  const int width = std::fprintf(stderr, "\r%s %s files", word, numbers.c_str()) - 1;
  if (width < width_) (void)std::fprintf(stderr, "%*s", width_ - width, "");
  width_ = std::max(width, width_);
}

void ProgressLine::Erase() {
  if (width_ > 0) (void)std::fprintf(stderr, "\r%*s\r", width_, "");
  width_ = 0;
}

}  // namespace ostrafel
