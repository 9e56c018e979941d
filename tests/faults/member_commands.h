// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The commands by which an update replaces the member A of /r by an array, as a Scenario writes
// them. A is or was stored at &&/r/A.
#ifndef OSTRAFEL_TESTS_FAULTS_MEMBER_COMMANDS_H_
#define OSTRAFEL_TESTS_FAULTS_MEMBER_COMMANDS_H_

#include <string>

// What is there?
inline const std::string kType = "TYPE | &&/r/A\n";
inline const std::string kFirstElement = "LINDEX | &&/r/A | 0\n";
inline const std::string kScanBelow = "SCAN | 0 | MATCH | &&/r/A/* | COUNT | 1000\n";
inline const std::string kScanLinks = "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n";

// All shapes that it can have had go.
inline const std::string kUnlink = "UNLINK | &&/r/A\n";
inline const std::string kRemoveScalar = "HDEL | /r | A\n";
inline const std::string kRemoveRecords =
    "HDEL | /r | &&Array A &&/r/A\n"
    "HDEL | /r | &&ObjectRef A &&/r/A\n"
    "HDEL | /r | &&Object A &&/r/A\n";
inline const std::string kRemoveFields = kRemoveScalar + kRemoveRecords;

// The new one comes.
inline const std::string kWriteArray = "HSET | /r | &&Array A &&/r/A | \n";

#endif  // OSTRAFEL_TESTS_FAULTS_MEMBER_COMMANDS_H_
