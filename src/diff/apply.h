// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Changing a live store.
#ifndef OSTRAFEL_DIFF_APPLY_H_
#define OSTRAFEL_DIFF_APPLY_H_

#include <hiredis/hiredis.h>

#include <cstddef>
#include <optional>

#include "diff/difference.h"
#include "memory/memory_server.h"

namespace ostrafel {

/// Up to so many keys are changed in one transaction. A server looks through all keys that a client
/// watches for each one more: the square of this.
inline constexpr std::size_t kKeysChangedAtOnce = 10000;

/// So often it is tried to change a store that others change, too.
inline constexpr int kMostAttempts = 3;

/// What was changed.
struct Applied {
  std::size_t keys = 0;
  std::size_t records = 0;  ///< Fields and elements that were written, changed and removed.
  std::size_t transactions = 0;
};

/// Takes the differences between stored and wanted, all or some, out of the live store, which holds
/// what stored has of these keys; adds to applied what was changed.
///
/// Each transaction watches the keys that it changes (WATCH), looks whether they still hold what
/// stored has of them, and changes them (MULTI ... EXEC). With batch, a transaction changes so many
/// resources, but stays below kKeysChangedAtOnce keys unless one resource has more.
///
/// Returns false when another client has changed a key: what earlier transactions changed stays
/// changed, the rest is as it was. Raises runtime_error when the connection breaks or the server
/// refuses a command, likewise, and without batch when more than kKeysChangedAtOnce keys differ.
[[nodiscard]] bool ApplyDifferences(redisContext* context, const Server& stored,
                                    const Server& wanted, const Differences& differences,
                                    std::optional<std::size_t> batch, Applied* applied);

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_APPLY_H_
