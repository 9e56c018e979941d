// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The floor: what the two libraries cost. It finds the server with the shell pipeline of
// src/connection/connection_config.cpp, reads the same files with jansson, through stdio as it is,
// and makes the same calls of hiredis as a recorded run of Ostrafel (record_calls.c), and nothing
// else. No string is made, nothing is sorted, nothing is kept, and nothing is sent before all of it
// is formatted.
//
// Usage: replay [--round-trips] RECORDING SOCKET FOLDER FILENAME
//
// --round-trips sends each command by itself and waits for its reply. Prints how many seconds, and
// how many of its processor, it took to read the recording, which a loader need not do.
#include <dirent.h>
#include <fcntl.h>
#include <hiredis/hiredis.h>
#include <jansson.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

// One call of hiredis. number is what "%d" takes, and there are at most three arguments.
struct Call {
  const char* format;  // a null pointer for redisGetReply
  const char* texts[3];
  int number;
  char kind;
};

static void Fail(const char* what) {
  perror(what);
  exit(1);
}

// --- The recording -------------------------------------------------------------------------------

static struct Call* calls;
static size_t call_count;

// The next string of a record.
static const char* Take(const char** place) {
  const char* text = *place;
  *place += strlen(text) + 1;
  return text;
}

static void AddCall(const char** place) {
  if ((call_count & (call_count - 1)) == 0) {
    const size_t room = call_count == 0 ? 1 : 2 * call_count;
    calls = realloc(calls, room * sizeof *calls);
    if (calls == NULL) Fail("realloc");
  }
  struct Call* call = &calls[call_count++];
  memset(call, 0, sizeof *call);
  call->kind = *(*place)++;
  if (call->kind == 'G') return;
  call->format = Take(place);
  int texts = 0;
  for (const char* p = strchr(call->format, '%'); p != NULL; p = strchr(p + 1, '%')) {
    if (p[1] == 'd') {
      call->number = atoi(Take(place));
    } else {
      call->texts[texts++] = Take(place);
    }
  }
}

static void ReadRecording(const char* path) {
  const int file = open(path, O_RDONLY);
  struct stat status;
  if (file < 0 || fstat(file, &status) != 0) Fail(path);
  const size_t size = (size_t)status.st_size;
  const char* place = mmap(NULL, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file, 0);
  if (place == MAP_FAILED) Fail("mmap");
  for (const char* end = place + size; place < end;) AddCall(&place);
}

// --- What is measured ----------------------------------------------------------------------------

static void FindServer(void) {
  FILE* pipe = popen(
      "dirname $(grep -m 1 '^unixsocket ' /etc/redis/redis.conf |                 "
      "awk '{print $2}') | tr -d '\\n'",
      "r");
  char line[1024];
  if (pipe == NULL || fgets(line, sizeof line, pipe) == NULL) Fail("popen");
  (void)pclose(pipe);
}

static void Parse(const char* path) {
  FILE* file = fopen(path, "r");
  if (file == NULL) Fail(path);
  json_error_t error;
  // A byte-order mark, which files may have, is passed over.
  char start[3] = {0};
  if (fread(start, 1, 3, file) < 3 || memcmp(start, "\xEF\xBB\xBF", 3) != 0) rewind(file);
  json_t* document = json_loadf(file, 0, &error);
  if (document == NULL) Fail(path);
  (void)fclose(file);
  const char* included = json_string_value(json_object_get(document, "&&File"));
  const char* point = included == NULL ? NULL : strrchr(included, '.');
  if (point != NULL && strcmp(point, ".json") == 0) {
    char included_path[4096];
    (void)strcat(strcpy(included_path, "/usr/local/nginx/www/"), included);
    Parse(included_path);
  }
  json_decref(document);
}

static void Walk(const char* folder, const char* file_name) {
  DIR* directory = opendir(folder);
  if (directory == NULL) Fail(folder);
  for (const struct dirent* entry = readdir(directory); entry != NULL; entry = readdir(directory)) {
    if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0) continue;
    char path[4096];
    (void)strcat(strcat(strcpy(path, folder), "/"), entry->d_name);
    struct stat status;
    if (entry->d_type == DT_DIR) {
      Walk(path, file_name);
    } else if (entry->d_type != DT_REG && stat(path, &status) != 0) {
      Fail(path);
    } else if (entry->d_type != DT_REG && S_ISDIR(status.st_mode)) {
      Walk(path, file_name);
    } else if (strcmp(entry->d_name, file_name) == 0) {
      Parse(path);
    }
  }
  (void)closedir(directory);
}

static void Release(void* reply) {
  if (reply == NULL) Fail("no reply");
  freeReplyObject(reply);
}

// Makes one call, with each argument where the format has it.
static void Make(redisContext* context, const struct Call* call, bool waits) {
  const char* const* texts = call->texts;
  if (call->format[0] == 'S') {  // SCAN %d MATCH %s COUNT 1000
    Release(redisCommand(context, call->format, call->number, texts[0]));
  } else if (call->format[0] == 'H' && call->format[2] == 'C') {  // HSCAN %s %d MATCH %s
    Release(redisCommand(context, call->format, texts[0], call->number, texts[1]));
  } else if (waits) {
    Release(redisCommand(context, call->format, texts[0], texts[1], texts[2]));
  } else if (redisAppendCommand(context, call->format, texts[0], texts[1], texts[2]) != REDIS_OK) {
    Fail("redisAppendCommand");
  }
}

static void Replay(redisContext* context, bool is_one_at_a_time) {
  for (size_t i = 0; i < call_count; ++i) {
    const struct Call* call = &calls[i];
    if (call->kind != 'G') {
      Make(context, call, call->kind == 'C' || is_one_at_a_time);
    } else if (!is_one_at_a_time) {
      void* reply = NULL;
      (void)redisGetReply(context, &reply);
      Release(reply);
    }
  }
}

// Not inlined, so that its instructions can be counted by themselves.
__attribute__((noinline)) void RunFloor(char** arguments, bool is_one_at_a_time) {
  FindServer();
  redisContext* context = redisConnectUnix(arguments[0]);
  if (context == NULL || context->err != 0) Fail(arguments[0]);
  Walk(arguments[1], arguments[2]);
  Replay(context, is_one_at_a_time);
  redisFree(context);
}

static double Now(clockid_t clock) {
  struct timespec now;
  (void)clock_gettime(clock, &now);
  return (double)now.tv_sec + (double)now.tv_nsec / 1e9;
}

int main(int argc, char** argv) {
  const bool is_one_at_a_time = argc == 6 && strcmp(argv[1], "--round-trips") == 0;
  if (argc != 5 && !is_one_at_a_time) {
    (void)fputs("Usage: replay [--round-trips] RECORDING SOCKET FOLDER FILENAME\n", stderr);
    return 2;
  }
  char** arguments = argv + (is_one_at_a_time ? 2 : 1);
  const double start = Now(CLOCK_MONOTONIC);
  const double cpu_start = Now(CLOCK_PROCESS_CPUTIME_ID);
  ReadRecording(arguments[0]);
  (void)printf("%.6f %.6f\n", Now(CLOCK_MONOTONIC) - start,
               Now(CLOCK_PROCESS_CPUTIME_ID) - cpu_start);
  RunFloor(arguments + 1, is_one_at_a_time);
  return 0;
}
