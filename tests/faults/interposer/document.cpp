// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Operations of jansson that no document can make fail.
#include <jansson.h>

#include "faults/interposer/next.h"
#include "faults/interposer/plan.h"

extern "C" {

int json_object_clear(json_t* object) {
  static auto* const next = failing_calls::Next<int(json_t*)>("json_object_clear");
  return failing_calls::Fails(failing_calls::kObjectClear) ? -1 : next(object);
}

int json_object_update(json_t* object, json_t* other) {
  static auto* const next = failing_calls::Next<int(json_t*, json_t*)>("json_object_update");
  return failing_calls::Fails(failing_calls::kObjectUpdate) ? -1 : next(object, other);
}

const char* json_object_iter_key(void* member) {
  static auto* const next = failing_calls::Next<const char*(void*)>("json_object_iter_key");
  return failing_calls::Fails(failing_calls::kObjectIterKey) ? nullptr : next(member);
}

int json_object_set_new(json_t* object, const char* key, json_t* value) {
  using Function = int(json_t*, const char*, json_t*);
  static auto* const next = failing_calls::Next<Function>("json_object_set_new");
  if (!failing_calls::Fails(failing_calls::kObjectSetNew)) return next(object, key, value);
  // The value is given away even when it cannot be kept. Nothing is stored under a null key.
  return next(object, nullptr, value);
}

}  // extern "C"
