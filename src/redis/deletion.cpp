// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The deletion of store/server.h. Its commands are sent in lower case, to the byte.
#include <cstddef>

#include "connection/reply.h"
#include "redis/pipeline.h"
#include "redis/redis_server.h"
#include "redis/replies.h"
#include "store/server.h"

namespace ostrafel {

unsigned DeleteMatchingKeys(Server* server, const std::string& pattern) {
  redisContext* context = server->connection.get();
  const Reply found = Ask(context, "keys %s", pattern.c_str());
  if (!IsArrayOfStrings(found.get())) return 1;
  Pipeline pipeline = {context};
  for (std::size_t i = 0; i < found->elements; ++i) {
    AppendCommand(&pipeline, "del %s", found->element[i]->str);
  }
  FinishPipeline(pipeline);
  for (std::size_t i = 0; i < found->elements; ++i) {
    Reply reply;
    if (!ReadPipelinedReply(pipeline, &reply)) return 0;
  }
  return 1;
}

}  // namespace ostrafel
