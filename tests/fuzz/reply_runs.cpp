// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "fuzz/reply_runs.h"

#include <array>

#include "connection/connection_state.h"

namespace {

constexpr const char* kDocumentPath = "/static data/index.json";

// With these two, a run sends every command that there is.
constexpr const char* kShortDocument = R"({"A": "x", "B": [1, {"C": 2}]})";
constexpr const char* kLongDocument = R"({
  "@odata.id": "/r", "Text": "x", "&&ETag": "e", "Object": {"A": 1}, "Empty": {},
  "Link": {"@odata.id": "/l"}, "Inline": {"@odata.id": "/i", "B": 2},
  "Values": [1, "v"], "Links": [{"@odata.id": "/m"}],
  "Objects": [{"C": 3}, {"@odata.id": "/n", "D": 4}], "Nested": [[5], []]
})";

}  // namespace

ReplyRun SelectReplyRun(unsigned char selector) {
  constexpr std::array<std::size_t, 4> bytes_at_once = {1, 2, 7, std::size_t{1} << 20};
  ReplyRun run;
  run.arguments = {(selector & 0x01U) != 0 ? "create" : "update", kDocumentPath, "/r"};
  run.document = (selector & 0x02U) != 0 ? kLongDocument : kShortDocument;
  run.has_password = (selector & 0x04U) != 0;
  run.breaks_at_end = (selector & 0x08U) != 0;
  run.bytes_at_once = bytes_at_once[(selector & 0x30U) >> 4U];
  return run;
}

Machine MachineOf(const ReplyRun& run) {
  Machine machine;
  machine.files[kDocumentPath] = run.document;
  return machine;
}

void Connect(const ReplyRun& run) {
  ostrafel::ConnectionConfig config;
  config.type = ostrafel::UnixSocket;
  config.socket_path = "/redis.sock";
  if (run.has_password) config.password = kPassword;
  ostrafel::Connection.ConnectionConfigCopy = config;
}
