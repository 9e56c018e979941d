// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// All that the rules know of a tree: its files, who writes which key, and what a create and an
// update of it leave in a store.
#ifndef OSTRAFEL_CHECK_SURVEY_H_
#define OSTRAFEL_CHECK_SURVEY_H_

#include <jansson.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "check/finding.h"
#include "document/document.h"
#include "loading/load_end.h"
#include "loading/tree_loading.h"
#include "memory/memory_server.h"
#include "play/play.h"
#include "tool/progress.h"
#include "tree/outline.h"

namespace ostrafel {

/// A file that the load takes.
struct TreeFile {
  std::string path;        ///< As the loader opens it.
  std::string listed_key;  ///< The key that follows from its place.
  LoadEnd end;             ///< As ReadResource and IncludeInResource have it.
  std::string key;         ///< Where its root goes; listed_key where that is not known.
  std::string text_path;   ///< The file that its members stand in: its own or the included one.
  bool has_id = false;     ///< It has an "@odata.id" itself.
};

/// Somebody who writes the members of a key: a file's root, or an object that has an "@odata.id"
/// beside other members.
struct Claim {
  std::size_t file;     ///< Its index in Survey::files.
  std::string pointer;  ///< Of the object; empty for the root.
};

struct Survey {
  LoadRequest request;  ///< Its action means nothing.
  Listing listing;
  std::vector<TreeFile> files;                                       ///< In the order of the load.
  std::unordered_map<std::string, std::size_t> files_by_listed_key;  ///< Indexes of files.

  /// Key -> who claims it, in the order of the load. The first one's members are stored. What a
  /// later one holds is not, and claims nothing.
  std::unordered_map<std::string, std::vector<Claim>> claims;

  /// The keys of files that could not be read, and of objects that an "@odata.id" that is no string
  /// keeps from being written: what should lie there is not known.
  std::unordered_set<std::string> unread_keys;

  Played create;             ///< On an empty store.
  Played update;             ///< Over what the create left.
  std::size_t keys = 0;      ///< After the create.
  std::size_t records = 0;   ///< Fields and elements after the create.
  std::size_t searches = 0;  ///< Searches of all keys that the update makes.

  /// What the create leaves, failing files passed over: with them the load would end at the first,
  /// and nothing could be said of the others.
  Server store;
  bool is_refused = false;  ///< In that create a key would have been both a hash and a list.
  /// What the update of the same files leaves over that, unless it is the same.
  std::optional<Server> updated;
};

/// Reads the tree and plays its loads. Prints nothing. Keeps all documents in Documents.kept_files,
/// which must be set. Tells how many files it has surveyed.
[[nodiscard]] Survey SurveyTree(
    const LoadRequest& request, const TakeProgress& tell = [](std::size_t, std::size_t) {});

/// A file's document, for the rules that look at one after the other.
struct Subject {
  std::size_t file;   ///< Its index in Survey::files.
  Document own_root;  ///< As the file has it. Shares its members with root, or has none of them.
  Document root;      ///< As it is written: with the included members.
  Outline outline;    ///< Of root.
  bool is_stored = true;  ///< False when another claims the key first: no member is stored.
};

/// Reads a document once more; nothing unless the file's end is kDone.
[[nodiscard]] std::optional<Subject> ReadSubject(const Survey& survey, std::size_t file);

/// True when a node writes its members to a key of its own: the root, and an object that says its
/// key.
[[nodiscard]] bool ClaimsKey(const Outline& outline, std::size_t node);

/// True when nobody claims the key of a node, for which ClaimsKey holds, before the node does.
[[nodiscard]] bool IsFirstClaim(const Survey& survey, const Subject& subject, std::size_t node);

/// True when the members of a node, an object, are stored, as far as claims go: neither it nor an
/// object around it has a key that another claims before.
[[nodiscard]] bool IsStored(const Survey& survey, const Subject& subject, std::size_t node);

/// For each node of the subject's outline whether it is stored: its record, or of the root its
/// members. Besides what IsStored has, what the writer does not come to is not: in a member of the
/// root, all from a kBadId node on.
[[nodiscard]] std::vector<bool> StoredNodes(const Survey& survey, const Subject& subject);

/// Where a pointer of the subject's document stands: "/&&File" in its own file, all else in the
/// file that the members come from.
[[nodiscard]] Place PlaceOf(const Survey& survey, const Subject& subject,
                            const std::string& pointer, Spot spot = Spot::kValue);
[[nodiscard]] Place PlaceOf(const Survey& survey, const Subject& subject, std::size_t node,
                            Spot spot = Spot::kValue);

/// The place of a claim: its "@odata.id", or the root when the file has none.
[[nodiscard]] Place PlaceOf(const Survey& survey, const Claim& claim);

/// True when a path that could not be looked at may hide a file that the load would take: the file
/// itself, or all of a folder.
[[nodiscard]] bool MayHideFile(const Survey& survey, const std::string& path);

/// True when a create of the tree stores something at key, or a file that could not be read might.
[[nodiscard]] bool IsKey(const Survey& survey, const std::string& key);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_SURVEY_H_
