// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_SUPPORT_REDIS_REPLY_H_
#define OSTRAFEL_TESTS_SUPPORT_REDIS_REPLY_H_

#include <hiredis/hiredis.h>

#include "model/reply.h"

/// A reply of hiredis as a value of its own. Types that RESP 2 does not have become a nil.
model::Reply Convert(const redisReply& reply);

#endif  // OSTRAFEL_TESTS_SUPPORT_REDIS_REPLY_H_
