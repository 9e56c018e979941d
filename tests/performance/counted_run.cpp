// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "performance/counted_run.h"

#include <fstream>
#include <stdexcept>

namespace {

// libc chooses its variants of memcpy, strlen and others, and the dynamic linker its way of saving
// registers, by the processor: features are struck out, and preferences that depend on the model
// are settled, until one choice is left.
constexpr const char* kTunables =
    "GLIBC_TUNABLES=glibc.cpu.hwcaps="
    "-AVX2,-AVX,-AVX_Fast_Unaligned_Load,-FMA,-FMA4,-BMI2,-ERMS,-FSRM,-RTM,-SSE4_2,-SSE4_1,-SSSE3,"
    "-XSAVE,-XSAVEC,-Fast_Unaligned_Load,-Fast_Unaligned_Copy,-Slow_BSF";

}  // namespace

std::string CountingLauncher(const std::string& seed_library, const std::string& output_path) {
  // PATH is for the shell that the program starts. What that costs is not counted.
  return std::string("/usr/bin/env -i PATH=/usr/bin:/bin ") + kTunables +
         " LD_PRELOAD=" + seed_library +
         " valgrind -q --tool=callgrind --child-silent-after-fork=yes --callgrind-out-file=" +
         output_path;
}

long long CountedInstructions(const std::string& output_path) {
  std::ifstream file(output_path);
  const std::string label = "summary: ";
  for (std::string line; std::getline(file, line);) {
    if (line.rfind(label, 0) == 0) return std::stoll(line.substr(label.size()));
  }
  throw std::runtime_error(output_path + " has no summary");
}
