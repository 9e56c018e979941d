// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/options.h"

namespace ostrafel {

CommandLine ParseCommandLine(int argc, char** argv) {
  CheckOptions options;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--format") {
      const std::string name = argv[++i];
      options.format = name == "json" ? Format::kJson : Format::kText;
    } else if (word == "--print-store") {
      options.print_store = true;
    } else if (options.static_data_path.empty()) {
      options.static_data_path = word;
    } else {
      options.uri = word;
    }
  }
  for (const Rule& rule : Rules()) options.is_on.push_back(rule.is_on);
  if (options.static_data_path.empty()) return {std::nullopt, 2};
  return {options, 0};
}

}  // namespace ostrafel
