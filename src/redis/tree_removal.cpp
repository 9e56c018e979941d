// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "redis/tree_removal.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "redis/pipeline.h"
#include "redis/replies.h"

namespace ostrafel {

namespace {

// Formats that take the uri.
using Patterns = std::array<const char*, 3>;
constexpr Patterns kPatterns = {"keys %s", "keys %s/*", "keys &&%s/*"};
constexpr Patterns kPatternsAfterSlash = {"keys %s", "keys %s*", "keys &&%s*"};

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

unsigned RemoveResourceTree(redisContext* context, const char* uri) {
  try {
    const std::string text(uri);
    const bool ends_with_slash = text.at(text.size() - 1) == '/';
    for (const char* pattern : ends_with_slash ? kPatternsAfterSlash : kPatterns) {
      const Reply found = Ask(context, pattern, text.c_str());
      if (IsArrayOfStrings(found.get()) && DeleteKeys(context, *found) == 0) return 0;
    }
  } catch (const std::length_error& error) {
    (void)std::fprintf(stderr, "Failed to push data: %s.\n", error.what());
    return 0;
  }
  return 1;
}

}  // namespace ostrafel
