// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/document_texts.h"

#include <gtest/gtest.h>
#include <jansson.h>

#include <cstdlib>

#include "document/document.h"
#include "play/play.h"
#include "support/temp_directory.h"

namespace ostrafel {

MemoryExport Export(const Server& server) { return ExportOf(server, "/r"); }

std::string TextOf(const Server& server, const Texts& losses) {
  const MemoryExport made = Export(server);
  EXPECT_EQ(TextsOf(made.losses), losses);
  return made.documents.at("");
}

std::string Compact(const std::string& text) {
  const Document document(json_loads(text.c_str(), 0, nullptr));
  EXPECT_NE(document, nullptr) << text;
  char* dumped = json_dumps(document.get(), JSON_COMPACT);
  std::string line = dumped == nullptr ? "" : dumped;
  free(dumped);
  return line;
}

Server Created(const std::string& text, const std::string& uri) {
  const TempDirectory tree;
  tree.Write("index.json", text);
  const LoadRequest request = {LoadAction::kCreate, tree.path(), uri, "index.json"};
  Server server;
  const Played played = PlayLoad(&server, request, ListTree(request), OnFailure::kStop);
  EXPECT_EQ(played.status, 0) << played.messages;
  return server;
}

std::string Nested(std::size_t arrays, const std::string& innermost) {
  return R"({"A":)" + std::string(arrays, '[') + innermost + std::string(arrays, ']') + "}";
}

}  // namespace ostrafel
