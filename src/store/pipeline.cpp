// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/pipeline.h"

#include <sys/socket.h>

// Since 1.0, hiredis has its functions for texts under other names, and these names here.
#if HIREDIS_MAJOR >= 1
#include <hiredis/sdscompat.h>
#endif

namespace {

constexpr std::size_t kPieceSize = std::size_t{16} * 1024;

// Makes an end of the stream of a failed write. Replies that have come are kept by the socket.
void StopSending(redisContext* context) {
  (void)shutdown(context->fd, SHUT_RDWR);
  sdssetlen(context->obuf, 0);
  context->obuf[0] = '\0';
  context->err = 0;
  context->errstr[0] = '\0';
}

}  // namespace

void SendLongPipeline(Pipeline* pipeline) {
  redisContext* context = pipeline->context;
  if (context->err != 0 || sdslen(context->obuf) < kPieceSize) return;
  if (redisBufferWrite(context, nullptr) == REDIS_OK) return;  // what is left goes with the next
  StopSending(context);
  pipeline->is_broken = true;
}
