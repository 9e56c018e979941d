// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_RUN_MODEL_H_
#define OSTRAFEL_TESTS_MODEL_RUN_MODEL_H_

#include <string>
#include <vector>

#include "model/endpoint.h"

namespace model {

/// What a run leaves besides the store: both outputs and the status that the shell sees.
struct Outcome {
  std::string out;
  std::string err;
  int status = 0;
};

/// The folder of included files on a real machine.
inline const std::string kIncludeRoot = "/usr/local/nginx/www/";

/// Plays one whole run from the moment when the connection stands: the action, the list of files,
/// the load of each, the last flushes.
///
///   arguments     Action, StaticDataPath, URI and, if given, FileName, without the program's name;
///                 the first three not empty
///   include_root  takes the place of kIncludeRoot; with its last slash
///
/// A pure second opinion: it works on its own plain containers, keeps nothing between two calls,
/// and asks and tells the endpoint exactly what the real run must send.
Outcome RunModel(Endpoint& endpoint, const std::vector<std::string>& arguments,
                 const std::string& include_root = kIncludeRoot);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_RUN_MODEL_H_
