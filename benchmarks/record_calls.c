// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Preloaded (LD_PRELOAD) into Ostrafel, records its calls of hiredis, in order, to the file that
// OSTRAFEL_RECORDING names, so that replay.c can make the very same ones.
//
// Each call is one record:
//   'C'  redisCommand         )  followed by the format and then each of its arguments as a string,
//   'A'  redisAppendCommand   )  all with a NUL after them; "%d" is written out in decimal
//   'G'  redisGetReply
// No string of a record is without its NUL, and the format's "%" tell how many arguments there are.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <hiredis/hiredis.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static FILE* recording;
static int depth;  // redisCommand calls redisGetReply itself

static void Put(const char* text) { (void)fwrite(text, 1, strlen(text) + 1, recording); }

static void Record(char call, const char* format, va_list arguments) {
  if (recording == NULL) {
    const char* path = getenv("OSTRAFEL_RECORDING");
    recording = path == NULL ? NULL : fopen(path, "w");
    if (recording == NULL) abort();
  }
  (void)fputc(call, recording);
  if (format == NULL) return;
  Put(format);
  for (const char* place = strchr(format, '%'); place != NULL; place = strchr(place + 1, '%')) {
    if (place[1] == 'd') {
      char digits[16];
      (void)snprintf(digits, sizeof digits, "%d", va_arg(arguments, int));
      Put(digits);
    } else {
      Put(va_arg(arguments, const char*));
    }
  }
}

static void RecordReply(char call, ...) {
  va_list none;
  va_start(none, call);
  Record(call, NULL, none);
  va_end(none);
}

void* redisCommand(redisContext* context, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Record('C', format, arguments);
  va_end(arguments);
  va_start(arguments, format);
  ++depth;
  void* reply = redisvCommand(context, format, arguments);
  --depth;
  va_end(arguments);
  return reply;
}

int redisAppendCommand(redisContext* context, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Record('A', format, arguments);
  va_end(arguments);
  va_start(arguments, format);
  const int status = redisvAppendCommand(context, format, arguments);
  va_end(arguments);
  return status;
}

int redisGetReply(redisContext* context, void** reply) {
  static int (*next)(redisContext*, void**);
  if (next == NULL) next = (int (*)(redisContext*, void**))dlsym(RTLD_NEXT, "redisGetReply");
  if (depth == 0) RecordReply('G');
  return next(context, reply);
}
