// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "driver/arguments.h"

#include "base/message.h"
#include "driver/usage.h"

namespace ostrafel {

namespace {

constexpr const char* kDefaultFileName = "index.json";

bool IsEmpty(const char* text) { return text[0] == '\0'; }

bool RefuseWithUsage() {
  PrintUsage();
  return false;
}

}  // namespace

bool CheckArguments(int argc, char** argv, Arguments* arguments) {
  if (argc <= 1) return RefuseWithUsage();
  if (argc != 4 && argc != 5) {
    PrintMessage("Incorrect arguments number.\n");
    return RefuseWithUsage();
  }
  arguments->action = argv[1];
  arguments->static_data_path = argv[2];
  arguments->uri = argv[3];
  arguments->file_name = argc == 5 && !IsEmpty(argv[4]) ? argv[4] : kDefaultFileName;
  if (IsEmpty(arguments->action) || IsEmpty(arguments->static_data_path) ||
      IsEmpty(arguments->uri)) {
    PrintMessage(
        "The required property <Action> <StaticDataPath> <URI> should be a non-empty string.\n");
    return RefuseWithUsage();
  }
  return true;
}

}  // namespace ostrafel
