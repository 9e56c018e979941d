// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "driver/usage.h"

#include "base/message.h"

namespace ostrafel {

namespace {

constexpr const char* kUsage =
    R"(Usage:
  Ostrafel <Action> <StaticDataPath> <URI> [FileName]

Options:
  Action         CREATE or UPDATE (case insensitive)
  StaticDataPath Path to static data file or directory.
  URI            The URI of the root instance of static data files.
  FileName       Load the specific file. If this option is not specified,
                 default is index.json.

Example,
  Ostrafel create /tmp/sdata /redfish
    - For each folder under /tmp/sdata, index.json will be loaded.
      For instance, /tmp/sdata/index.json will be loaded to redis key /redfish.

  Ostrafel update /tmp/sdata/v1/other.json /redfish/v1/
    - /tmp/sdata/v1/other.json will be merged to redis key /redfish/v1/.

  Ostrafel update /tmp/sdata/ /redfish other.json
    - For each folder under /tmp/sdata, other.json will be merged.
      If other.json is not found in the folder, the key would not be updated.

)";

}  // namespace

void PrintUsage() { PrintMessage("%s", kUsage); }

}  // namespace ostrafel
