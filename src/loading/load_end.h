// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_LOADING_LOAD_END_H_
#define OSTRAFEL_LOADING_LOAD_END_H_

#include <string>

namespace ostrafel {

/// How a load ends, and the message of each end.
enum class LoadEnd {
  kDone,            ///< No message here: the driver has one for success.
  kTreeNotRemoved,  ///< "Fail to remove resource tree\n"
  kNoSuchPath,      ///< "Input path should be a file or directory\n"
  kNotWalked,       ///< "Error occurs while reading files\n": a directory could not be read, or its
                    ///< files not be listed
  kNotObject,       ///< "The content of %s is not a valid JSON data.\n": unreadable, no JSON object
  kBadId,           ///< No message: the "@odata.id" of a root is no string.
  kNotIncluded,     ///< ">>> Error occurs when processing &&File in %s\n"
  kLogicError,      ///< "Error %s occurs while parsing root object.\n": a string was refused
  kNotWritten,      ///< ">>> Error occurs while parsing file %s\n": its last member, for example
  kNotFlushed,      ///< ">>> Fail to write rest of data into redis\n"
};

struct LoadOutcome {
  LoadEnd end = LoadEnd::kDone;
  std::string text = {};  ///< What stands for %s: the file's path, or what the library says.
};

/// Prints the message of the end, if it has one.
void PrintLoadEnd(const LoadOutcome& outcome);

}  // namespace ostrafel

#endif  // OSTRAFEL_LOADING_LOAD_END_H_
