// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "faults/interposer/plan.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "faults/interposer/crash_report.h"

namespace failing_calls {
namespace {

struct Name {
  const char* text;
  int error;
};

constexpr Name kNames[kCallCount] = {
    {"allocation", ENOMEM},
    {"open", EMFILE},
    {"fopen", EMFILE},
    {"fread", EIO},
    {"fgets", EIO},
    {"fgetc", EIO},
    {"puts", ENOSPC},
    {"read", ECONNRESET},
    {"write", EPIPE},
    {"socket", EMFILE},
    {"connect", ECONNREFUSED},
    {"opendir", EMFILE},
    {"readdir", EIO},
    {"close", ENOSPC},
    {"stat", EIO},
    {"popen", EMFILE},
    {"pclose", ECHILD},
    {"json_object_clear", ENOMEM},
    {"json_object_update", ENOMEM},
    {"json_object_iter_key", ENOMEM},
    {"json_object_set_new", ENOMEM},
    {"new", ENOMEM},
};

// Plain variables with constant values: they are in place before anything runs.
bool is_counting = false;
unsigned long counts[kCallCount] = {};
int planned_call = -1;
unsigned long planned_index = 0;
bool is_onwards = false;
int planned_error = 0;
char report_path[4096] = {};

const char* Setting(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

[[noreturn]] void RefuseSettings() {
  constexpr const char* message = "ostrafel_failing_calls: wrong OSTRAFEL_FAILING_ variables\n";
  (void)!write(STDERR_FILENO, message, std::strlen(message));
  _exit(126);
}

void ReadSettings() {
  const char* call = Setting("OSTRAFEL_FAILING_CALL");
  for (int i = 0; i < kCallCount; ++i) {
    if (std::strcmp(kNames[i].text, call) == 0) planned_call = i;
  }
  if (planned_call < 0 && *call != '\0') RefuseSettings();
  planned_index = std::strtoul(Setting("OSTRAFEL_FAILING_INDEX"), nullptr, 10);
  const char* mode = Setting("OSTRAFEL_FAILING_MODE");
  is_onwards = std::strcmp(mode, "onwards") == 0;
  if (!is_onwards && *mode != '\0' && std::strcmp(mode, "once") != 0) RefuseSettings();
  planned_error = static_cast<int>(std::strtol(Setting("OSTRAFEL_FAILING_ERRNO"), nullptr, 10));
  if (planned_error == 0 && planned_call >= 0) planned_error = kNames[planned_call].error;
  (void)std::snprintf(report_path, sizeof report_path, "%s", Setting("OSTRAFEL_FAILING_REPORT"));
}

void ClearEnvironment() {
  for (const char* name :
       {"LD_PRELOAD", "OSTRAFEL_FAILING_CALL", "OSTRAFEL_FAILING_INDEX", "OSTRAFEL_FAILING_MODE",
        "OSTRAFEL_FAILING_ERRNO", "OSTRAFEL_FAILING_REPORT"}) {
    (void)unsetenv(name);
  }
}

__attribute__((constructor)) void Start() {
  ReadSettings();
  ClearEnvironment();
#ifndef OSTRAFEL_WITHOUT_FAILING_ALLOCATION
  ReportCrashes();
#endif
  is_counting = true;
}

// Runs after the destructors of the program's own variables.
__attribute__((destructor)) void ReportLiveAllocations() {
#ifndef OSTRAFEL_WITHOUT_FAILING_ALLOCATION
  const long live = LiveAllocations();
  const int file = open(report_path, O_WRONLY | O_APPEND | O_CLOEXEC);
  if (file < 0) return;
  (void)dprintf(file, "live %ld\n", live);
  (void)close(file);
#endif
}

}  // namespace

bool Fails(Call call) {
  if (!is_counting) return false;
  const unsigned long index = counts[call]++;
  if (call != planned_call || index < planned_index) return false;
  if (index > planned_index && !is_onwards) return false;
  errno = planned_error;
  return true;
}

void FinishReport() { FinishReport(nullptr, nullptr); }

void FinishReport(const char* module, const char* function) {
  if (!is_counting) return;
  is_counting = false;
  const int file = open(report_path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (file < 0) return;
  for (int i = 0; i < kCallCount; ++i) (void)dprintf(file, "%s %lu\n", kNames[i].text, counts[i]);
  if (module != nullptr) (void)dprintf(file, "crash %s %s\n", module, function);
  (void)close(file);
}

}  // namespace failing_calls
