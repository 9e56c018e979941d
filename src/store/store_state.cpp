// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/store_state.h"

namespace ostrafel {

std::optional<StoreState> Store(std::in_place);

void PendingRemovals::clear() {
  keys.clear();
  list_values.clear();
  hash_fields.clear();
}

}  // namespace ostrafel
