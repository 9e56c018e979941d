// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_DRIVER_USAGE_TEXT_H_
#define OSTRAFEL_TESTS_DRIVER_USAGE_TEXT_H_

/// What the usage text must be, line by line.
inline constexpr const char* kUsageText =
    "Usage:\n"
    "  Ostrafel <Action> <StaticDataPath> <URI> [FileName]\n"
    "\n"
    "Options:\n"
    "  Action         CREATE or UPDATE (case insensitive)\n"
    "  StaticDataPath Path to static data file or directory.\n"
    "  URI            The URI of the root instance of static data files.\n"
    "  FileName       Load the specific file. If this option is not specified,\n"
    "                 default is index.json.\n"
    "\n"
    "Example,\n"
    "  Ostrafel create /tmp/sdata /redfish\n"
    "    - For each folder under /tmp/sdata, index.json will be loaded.\n"
    "      For instance, /tmp/sdata/index.json will be loaded to redis key /redfish.\n"
    "\n"
    "  Ostrafel update /tmp/sdata/v1/other.json /redfish/v1/\n"
    "    - /tmp/sdata/v1/other.json will be merged to redis key /redfish/v1/.\n"
    "\n"
    "  Ostrafel update /tmp/sdata/ /redfish other.json\n"
    "    - For each folder under /tmp/sdata, other.json will be merged.\n"
    "      If other.json is not found in the folder, the key would not be updated.\n"
    "\n";

#endif  // OSTRAFEL_TESTS_DRIVER_USAGE_TEXT_H_
