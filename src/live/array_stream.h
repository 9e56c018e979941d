// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_LIVE_ARRAY_STREAM_H_
#define OSTRAFEL_LIVE_ARRAY_STREAM_H_

#include <hiredis/hiredis.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace ostrafel {

/// An element of a reply that is an array: itself an array of strings, a status or an error.
struct ArrayElement {
  int type;                          ///< REDIS_REPLY_ARRAY, _STATUS or _ERROR.
  std::vector<std::string> strings;  ///< Those of the array, or the one of the others.
};

/// Is told the element at this place of the array.
using TakeElement = std::function<void(std::size_t place, ArrayElement element)>;

/// Reads the next reply, an array, and gives its elements away one after the other, as they come:
/// hiredis by itself would keep all of them until the last one is there. Returns how many there
/// were. Raises runtime_error when the connection breaks, with an error that comes instead of an
/// array, and for what is anything else than such an array; what take raises ends the reading.
/// After that the connection is of no use.
[[nodiscard]] std::size_t StreamArray(redisContext* context, const std::string& command,
                                      const TakeElement& take);

}  // namespace ostrafel

#endif  // OSTRAFEL_LIVE_ARRAY_STREAM_H_
