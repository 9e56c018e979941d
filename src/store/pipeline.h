// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Commands that travel together: appended one after the other, their replies read behind the last.
#ifndef OSTRAFEL_STORE_PIPELINE_H_
#define OSTRAFEL_STORE_PIPELINE_H_

#include <hiredis/hiredis.h>

#include <cstddef>

/// A pipeline that is being made. While it is, nothing else may use the context.
struct Pipeline {
  redisContext* context;
  std::size_t count = 0;   ///< Commands so far, each of which must get its reply read.
  bool is_broken = false;  ///< A piece could not be sent, so no more are.
};

/// Sends what waits of a long pipeline, so that the server works while the rest is formatted. Does
/// nothing while less than 16 KiB wait (what hiredis reads at a time, too): these go out when the
/// first reply is read.
///
/// When the server is gone, the replies that it has sent can still be read; then comes the end of
/// the stream, as if all commands had been sent before it left. Other failures stay in the context,
/// so that no reply can be read.
void SendLongPipeline(Pipeline* pipeline);

/// Appends one command, formatted by hiredis: every "%s" takes a NUL-terminated text. A command
/// that cannot be appended leaves the context in its error state, so that reading its reply fails.
template <typename... Texts>
void AppendCommand(Pipeline* pipeline, const char* format, Texts... texts) {
  ++pipeline->count;
  if (pipeline->is_broken) return;
  (void)redisAppendCommand(pipeline->context, format, texts...);
  SendLongPipeline(pipeline);
}

#endif  // OSTRAFEL_STORE_PIPELINE_H_
