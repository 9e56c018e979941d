// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The removal of a tree of store/server.h. Its commands are sent in lower case, to the byte.
#include <cstddef>
#include <stdexcept>
#include <string>

#include "base/message.h"
#include "layout/layout.h"
#include "redis/pipeline.h"
#include "redis/redis_server.h"
#include "redis/replies.h"
#include "store/server.h"

namespace ostrafel {

namespace {

// Deletes the keys that a KEYS command found. Returns 0 when a reply cannot be read.
unsigned DeleteKeys(redisContext* context, const redisReply& found) {
  Pipeline pipeline = {context};
  for (std::size_t i = 0; i < found.elements; ++i) {
    AppendCommand(&pipeline, "del %s", found.element[i]->str);
  }
  FinishPipeline(pipeline);
  for (std::size_t i = 0; i < found.elements; ++i) {
    Reply reply;
    if (!ReadPipelinedReply(pipeline, &reply)) return 0;
  }
  return 1;
}

}  // namespace

unsigned RemoveResourceTree(Server* server, const std::string& uri) {
  redisContext* context = server->connection.get();
  try {
    for (const std::string& pattern : TreePatterns(uri)) {
      const Reply found = Ask(context, "keys %s", pattern.c_str());
      if (IsArrayOfStrings(found.get()) && DeleteKeys(context, *found) == 0) return 0;
    }
  } catch (const std::length_error& error) {
    PrintLengthError(error.what());
    return 0;
  }
  return 1;
}

}  // namespace ostrafel
