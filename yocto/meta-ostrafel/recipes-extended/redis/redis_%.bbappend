# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# Nothing changes unless the distribution asks for it.
require ${@bb.utils.contains('DISTRO_FEATURES', 'ostrafel', 'redis-ostrafel.inc', '', d)}
