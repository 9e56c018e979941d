// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "connection/connection_state.h"

namespace ostrafel {

ConnectionState Connection;

}  // namespace ostrafel
