// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "loading/load_end.h"

#include "base/message.h"

namespace ostrafel {

void PrintLoadEnd(const LoadOutcome& outcome) {
  const char* text = outcome.text.c_str();
  switch (outcome.end) {
    case LoadEnd::kDone:
    case LoadEnd::kBadId:
      return;
    case LoadEnd::kTreeNotRemoved:
      return PrintMessage("Fail to remove resource tree\n");
    case LoadEnd::kNoSuchPath:
      return PrintMessage("Input path should be a file or directory\n");
    case LoadEnd::kNotWalked:
      return PrintMessage("Error occurs while reading files\n");
    case LoadEnd::kNotObject:
      return PrintMessage("The content of %s is not a valid JSON data.\n", text);
    case LoadEnd::kNotIncluded:
      return PrintMessage(">>> Error occurs when processing &&File in %s\n", text);
    case LoadEnd::kLogicError:
      return PrintMessage("Error %s occurs while parsing root object.\n", text);
    case LoadEnd::kNotWritten:
      return PrintMessage(">>> Error occurs while parsing file %s\n", text);
    case LoadEnd::kNotFlushed:
      return PrintMessage(">>> Fail to write rest of data into redis\n");
  }
}

}  // namespace ostrafel
