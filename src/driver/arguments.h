// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DRIVER_ARGUMENTS_H_
#define OSTRAFEL_DRIVER_ARGUMENTS_H_

namespace ostrafel {

/// The command line by name. All strings are borrowed from argv.
struct Arguments {
  const char* action = nullptr;            ///< "create" or "update", in any case.
  const char* static_data_path = nullptr;  ///< A .json file or a directory.
  const char* uri = nullptr;               ///< The key of the root resource.
  const char* file_name = nullptr;  ///< What to load in each folder: "index.json" if not said.
};

/// Takes argc and argv as main does, program name included, and fills arguments. Returns false,
/// after printing on standard error what is wrong and the usage text (the usage text alone when
/// there are no arguments at all), unless there are three or four arguments with the first three
/// not empty. An empty fourth argument stands for the default.
[[nodiscard]] bool CheckArguments(int argc, char** argv, Arguments* arguments);

}  // namespace ostrafel

#endif  // OSTRAFEL_DRIVER_ARGUMENTS_H_
