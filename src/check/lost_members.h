// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What a load does not store although it succeeds.
#ifndef OSTRAFEL_CHECK_LOST_MEMBERS_H_
#define OSTRAFEL_CHECK_LOST_MEMBERS_H_

#include <cstddef>
#include <map>
#include <vector>

#include "check/finding.h"
#include "check/survey.h"

namespace ostrafel {

/// Member of the root -> the first kBadId node in it that the writer comes to. From there on it
/// writes nothing of this member.
using Stops = std::map<std::size_t, std::size_t>;

/// Appends what is lost of one document, which is written and does not end the load: of a value and
/// what it holds only the value itself. is_stored is UncontestedNodes'. What lies under a lost
/// claim, is an object with a bad "@odata.id", or goes to a key of the other kind is left out.
void CheckLostMembers(const Survey& survey, const Subject& subject,
                      const std::vector<bool>& is_stored, const Stops& stops, Findings* findings);

/// Appends the members that are lost since the document includes others in their place.
void CheckReplacedMembers(const Survey& survey, const Subject& subject, Findings* findings);

/// Makes one finding of those of CheckLostMembers that tell of arrays with one list: at the second
/// array, to which the others are related.
void MergeSharedLists(Findings* findings);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_LOST_MEMBERS_H_
