// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/pipeline.h"

#include <cstdio>

bool ReadPipelinedReply(const Pipeline& pipeline, Reply* reply) {
  void* received = nullptr;
  // redisGetReply itself looks at the error only when no reply waits in the reader, and a server
  // may have sent more of them than it was asked for.
  const bool was_read =
      pipeline.context->err == 0 && redisGetReply(pipeline.context, &received) == REDIS_OK;
  reply->reset(static_cast<redisReply*>(received));
  if (!was_read) (void)std::fputs("Failed to get reply\n", stderr);
  return was_read;
}
