// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "redis/pipeline.h"

#include "base/message.h"

namespace ostrafel {

void SendPiece(const Pipeline& pipeline) {
  int is_sent = 0;  // a signal may cut a write short
  while (is_sent == 0 && pipeline.context->err == 0) {
    (void)redisBufferWrite(pipeline.context, &is_sent);
  }
}

void FinishPipeline(const Pipeline& pipeline) {
  if (pipeline.count % kPieceLength != 0) SendPiece(pipeline);
}

bool ReadPipelinedReply(const Pipeline& pipeline, Reply* reply) {
  void* received = nullptr;
  // redisGetReply itself looks at the error only when no reply waits in the reader.
  const bool was_read =
      pipeline.context->err == 0 && redisGetReply(pipeline.context, &received) == REDIS_OK;
  reply->reset(static_cast<redisReply*>(received));
  if (!was_read) PrintMessage("Failed to get reply\n");
  return was_read;
}

}  // namespace ostrafel
