// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_FAULTS_EVENTFUL_TREE_H_
#define OSTRAFEL_TESTS_FAULTS_EVENTFUL_TREE_H_

#include <set>
#include <string>

#include "model/memory_store.h"
#include "model/reply.h"
#include "support/temp_directory.h"

/// Static data on which a create and an update do everything that they can. One folder has a member
/// for every change of shape from one generation of the data to the other: a scalar, an object, a
/// link, a list of scalars, a list of objects and an object with an id of its own, each turning
/// into each. Beside it: all kinds of scalars, reserved members, empty containers, a file that is
/// included. Everything lies under kUri, so that a create removes all of it.
namespace eventful {

inline constexpr const char* kUri = "/redfish/v1";

/// Which generation of the data is meant.
enum class Generation { kFirst, kSecond };

/// Makes the folder's files, and one in the include directory, those of this generation.
void WriteFiles(const TempDirectory& folder, Generation generation);

/// A smaller tree, one file, that still makes create and update send each kind of command.
std::string SmallDocument(Generation generation);

/// Puts values that no load leaves there in the way of an update, so that it also prunes the keys
/// below an id and their twins. id is that of an object in the new data.
void AddStaleKeys(const std::string& id, model::Store* store);

/// The names of all commands that the program knows, in upper case.
extern const std::set<std::string> kEveryCommand;

/// The command's name in upper case.
std::string CommandName(const model::Command& command);

/// The ids of two objects of the second generation, for AddStaleKeys.
inline const std::string kInlineId = "/redfish/v1/Inline/Scalar_Inline";
inline const std::string kSmallInlineId = "/redfish/v1/I";

}  // namespace eventful

#endif  // OSTRAFEL_TESTS_FAULTS_EVENTFUL_TREE_H_
