// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Commands that travel together: all are sent before the first reply is read.
#ifndef OSTRAFEL_REDIS_PIPELINE_H_
#define OSTRAFEL_REDIS_PIPELINE_H_

#include <hiredis/hiredis.h>

#include <cstddef>

#include "connection/reply.h"

namespace ostrafel {

/// A pipeline under construction; until its replies are read, send nothing else.
///
/// Once a write has failed, which of the commands were carried out cannot be told, whatever the
/// server has answered: hiredis keeps the context in its error state, nothing more is sent, and no
/// reply can be read.
struct Pipeline {
  redisContext* context;
  std::size_t count = 0;  ///< Commands so far, each of which must get its reply read.
};

/// So many commands go out together while the rest is formatted, so that the server works
/// meanwhile: some 30 KB of usual commands. Most pipelines are shorter: one write.
constexpr std::size_t kPieceLength = 256;

/// Sends what waits in the context, if that has not failed.
void SendPiece(const Pipeline& pipeline);

/// Appends one command, formatted by hiredis: every "%s" takes a NUL-terminated string. A command
/// that cannot be appended leaves the context in its error state, too.
template <typename... Strings>
void AppendCommand(Pipeline* pipeline, const char* format, Strings... strings) {
  ++pipeline->count;
  if (pipeline->context->err != 0) return;
  (void)redisAppendCommand(pipeline->context, format, strings...);
  if (pipeline->count % kPieceLength == 0) SendPiece(*pipeline);
}

/// Sends the last piece; to be called before the first reply is read. redisGetReply would send it,
/// but only when no reply waits in its reader, and a server may have sent more than it was asked
/// for: commands that never went out must not pass for answered.
void FinishPipeline(const Pipeline& pipeline);

/// Reads the reply of the next command into reply. Returns false, and prints
/// "Failed to get reply\n", when it cannot be read. A reply that is read may still be empty.
[[nodiscard]] bool ReadPipelinedReply(const Pipeline& pipeline, Reply* reply);

}  // namespace ostrafel

#endif  // OSTRAFEL_REDIS_PIPELINE_H_
