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

/// Up to so many keys are changed in one transaction. Watching them takes the server a time that
/// grows with the square of this, in parts between which it serves others; the transaction blocks
/// it at a stretch. docs/performance.md has figures.
inline constexpr std::size_t kKeysChangedAtOnce = 10000;

/// So often it is tried again to change a store that others change, too.
inline constexpr int kMostRetries = 3;

/// What was changed.
struct Applied {
  std::size_t keys = 0;
  std::size_t records = 0;  ///< Fields and elements that were written, changed and removed.
  std::size_t transactions = 0;
  Differences differences = {};  ///< That are no more, in the order of the transactions.
  /// Another transaction was to be carried out (EXEC), and the server did not say that it was, or
  /// that it was not. It is not counted.
  bool is_in_doubt = false;
};

/// Takes the differences between stored and wanted, all or some, out of the live store, which holds
/// what stored has of these keys; adds to applied what was changed.
///
/// Each transaction watches the keys that it changes (WATCH), looks whether they still hold what
/// stored has of them, and changes them (MULTI ... EXEC). It is carried out only when the server
/// has taken all its commands. With batch, a transaction changes so many resources, but stays below
/// kKeysChangedAtOnce keys unless one resource has more.
///
/// When a key expires is nothing that a load says: it is not compared. A key that is changed in
/// part expires as before; one that is written anew, as by a load, does not.
///
/// Returns false when another client has changed a key: what earlier transactions changed stays
/// changed, the rest is as it was. Raises runtime_error when the connection breaks or the server
/// refuses a command, likewise but for a transaction in doubt; and, with nothing changed, without
/// batch when more than kKeysChangedAtOnce keys differ.
[[nodiscard]] bool ApplyDifferences(redisContext* context, const Server& stored,
                                    const Server& wanted, const Differences& differences,
                                    std::optional<std::size_t> batch, Applied* applied);

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_APPLY_H_
