// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Bytes as a store that ostrafel-export writes. The first byte of the input selects how:
//   0x03        of /r, /r/, / or &&/r
//   0x04        with names for Windows
// The rest are keys with kRecordSeparator between them. The first letter of each says what it
// holds: a list for "l", something else for "o", a hash for any other. What follows is the key and,
// with kPieceSeparator in front of each, its elements or its fields and values in turn.
//
// Whatever the store holds, its export ends, a load takes each of its documents, and each key in
// the scope is in one of them or listed. Where nothing is listed, a create brings all of the scope
// back, and what its records lead to.
#include <jansson.h>

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "document/document.h"
#include "export/memory_export.h"
#include "export/reached_keys.h"
#include "fuzz/arena.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/machine.h"
#include "play/play.h"
#include "store/store_state.h"

namespace {

using ostrafel::Server;

constexpr char kPieceSeparator = '\x1F';

std::vector<std::string> SplitPieces(std::string_view record) {
  std::vector<std::string> pieces;
  for (std::size_t end = record.find(kPieceSeparator); end != std::string_view::npos;
       end = record.find(kPieceSeparator)) {
    pieces.emplace_back(record.substr(0, end));
    record.remove_prefix(end + 1);
  }
  pieces.emplace_back(record);
  return pieces;
}

void AddKey(std::string_view record, Server* server) {
  if (record.empty()) return;
  const char type = record[0];
  std::vector<std::string> pieces = SplitPieces(record.substr(1));
  std::string key = std::move(pieces.front());
  pieces.erase(pieces.begin());
  if (type == 'o') {
    server->keys.emplace(std::move(key), ostrafel::OtherType());
  } else if (type == 'l') {
    if (!pieces.empty()) server->keys.emplace(std::move(key), std::move(pieces));
  } else {
    ostrafel::Hash hash;
    if (pieces.size() % 2 != 0) pieces.emplace_back();
    for (std::size_t i = 0; i < pieces.size(); i += 2) hash[pieces[i]] = pieces[i + 1];
    if (!hash.empty()) server->keys.emplace(std::move(key), std::move(hash));
  }
}

void CheckDocuments(const ostrafel::MemoryExport& made) {
  for (const auto& [folder, text] : made.documents) {
    json_error_t error;
    const ostrafel::Document document(
        json_loadb(text.data(), text.size(), JSON_REJECT_DUPLICATES, &error));
    if (document == nullptr) ReportDifference(error.text, "a document", text);
  }
}

// The store that a create of the documents makes.
Server Created(const ostrafel::MemoryExport& made, const std::string& uri, bool windows_names) {
  Machine machine;
  ostrafel::Listing listing;
  for (const auto& [folder, text] : made.documents) {
    const std::string path = "/tree/" + folder + "/index.json";
    machine.files[path] = text;
    listing.list.paths.push_back(path);
    const std::string below = !uri.empty() && uri.back() == '/' ? uri : uri + "/";
    listing.list.keys.push_back(folder.empty() ? uri : below + folder);
  }
  Server server;
  const OnMachine on_machine(&machine);
  const ostrafel::Played played =
      PlayLoad(&server, {ostrafel::LoadAction::kCreate, "/tree", uri, "index.json"}, listing,
               ostrafel::OnFailure::kStop);
  if (played.status != 0)
    ReportDifference("a create", windows_names ? "0, Windows" : "0", played.messages);
  return server;
}

void CheckKeys(const Server& before, const Server& after, const ostrafel::ExportScope& scope) {
  const std::set<std::string> reached = ReachedFrom(before, scope);
  for (const auto& [key, value] : before.keys) {
    const auto found = after.keys.find(key);
    if (found == after.keys.end() ? reached.count(key) != 0 : !(found->second == value)) {
      ReportDifference("a key of the store", "what it held", key);
    }
  }
  for (const auto& [key, value] : after.keys) {
    if (before.keys.count(key) == 0) ReportDifference("the store", "no new key", key);
  }
}

}  // namespace

void TestOneInput(std::string_view input) {
  if (input.empty()) return;
  const auto selector = static_cast<unsigned char>(input[0]);
  const bool windows_names = (selector & 0x04U) != 0;
  const AllocateInArena allocate_in_arena(false);
  const std::vector<std::string> uris = {"/r", "/r/", "/", "&&/r"};
  const std::string& uri = uris[selector & 0x03U];
  Server server;
  for (const std::string_view record : SplitRecords(input.substr(1))) AddKey(record, &server);
  const ostrafel::MemoryExport made = ExportOf(server, uri, windows_names);
  CheckDocuments(made);
  if (made.losses.empty()) {
    CheckKeys(server, Created(made, uri, windows_names), {uri, true});
  }
  ostrafel::Store.emplace();
}
