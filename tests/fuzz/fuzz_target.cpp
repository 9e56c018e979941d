// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "fuzz/fuzz_target.h"

#include "driver/run.h"
#include "fuzz/arena.h"
#include "store/store_state.h"

std::vector<std::string_view> SplitRecords(std::string_view input) {
  std::string_view rest = input;
  std::vector<std::string_view> records;
  for (std::size_t end = rest.find(kRecordSeparator); end != std::string_view::npos;
       end = rest.find(kRecordSeparator)) {
    records.push_back(rest.substr(0, end));
    rest.remove_prefix(end + 1);
  }
  records.push_back(rest);
  return records;
}

int RunProgram(Machine* machine, const std::vector<std::string>& arguments) {
  const AllocateInArena allocate_in_arena(false);
  std::vector<std::string> texts = {"Ostrafel"};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);

  ostrafel::Store.emplace();
  const OnMachine on_machine(machine);
  const int status = ostrafel::RunOstrafel(static_cast<int>(texts.size()), pointers.data());
  ostrafel::Store.emplace();
  return status & 0xFF;
}
