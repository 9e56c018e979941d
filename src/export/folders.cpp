// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/folders.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "base/affixes.h"
#include "layout/layout.h"

namespace ostrafel {

namespace {

// NAME_MAX of Linux's file systems, in bytes.
constexpr std::size_t kLongestName = 255;

// What a tree's paths may take of PATH_MAX, which is 4096 on Linux: the rest is for the place that
// it is put in.
constexpr std::size_t kLongestPath = 3072;

// A load keeps a folder open for each level, and a process may have 1024 files open.
constexpr std::size_t kMostSteps = 128;

// What Windows takes for devices, whatever comes behind a dot, and blanks before that.
constexpr std::array<std::string_view, 6> kDevices = {"con", "conin$", "conout$",
                                                      "prn", "aux",    "nul"};
constexpr std::array<std::string_view, 2> kNumberedDevices = {"com", "lpt"};

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string InLowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), Lower);
  return text;
}

bool IsDevice(std::string_view name) {
  std::string stem = InLowerCase(std::string(name.substr(0, name.find('.'))));
  stem.erase(stem.find_last_not_of(' ') + 1);
  if (std::find(kDevices.begin(), kDevices.end(), stem) != kDevices.end()) return true;
  return stem.size() == 4 && stem[3] >= '1' && stem[3] <= '9' &&
         std::find(kNumberedDevices.begin(), kNumberedDevices.end(), stem.substr(0, 3)) !=
             kNumberedDevices.end();
}

// Windows knows the lower case of more letters than those of ASCII, so that all others go, too.
bool IsForbidden(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte >= 0x7F ||
         std::string_view("<>:\"|?*\\").find(c) != std::string_view::npos;
}

void AppendPercents(char c, std::string* text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  const auto byte = static_cast<unsigned char>(c);
  *text += {'%', digits[byte >> 4U], digits[byte & 0xFU]};
}

std::string NameForWindows(const std::string& step) {
  std::string name;
  for (std::size_t i = 0; i < step.size(); ++i) {
    const bool is_last = i + 1 == step.size();
    const bool is_cut = is_last && (step[i] == '.' || step[i] == ' ');
    if (IsForbidden(step[i]) || is_cut || (i == 0 && IsDevice(step))) {
      AppendPercents(step[i], &name);
    } else {
      name += step[i];
    }
  }
  return name;
}

}  // namespace

std::optional<std::string> Folders::StepName(const std::string& step) const {
  if (step.empty() || step == "." || step == ".." || step.find('\0') != std::string::npos) {
    return std::nullopt;
  }
  std::string name = windows_names_ ? NameForWindows(step) : step;
  if (name.size() > kLongestName) return std::nullopt;
  if ((windows_names_ ? InLowerCase(name) : name) == kDocumentName) return std::nullopt;
  return name;
}

bool Folders::Take(const std::string& path) {
  if (taken_.count(path) != 0) return false;
  if (windows_names_) {
    // Folders on the way, too: two spellings of one would be one folder.
    std::vector<std::pair<std::string, std::string>> spellings;
    for (std::size_t end = path.find('/'); !path.empty(); end = path.find('/', end + 1)) {
      const std::string prefix = path.substr(0, end);
      spellings.emplace_back(InLowerCase(prefix), prefix);
      const auto known = spellings_.find(spellings.back().first);
      if (known != spellings_.end() && known->second != prefix) return false;
      if (end == std::string::npos) break;
    }
    for (auto& spelling : spellings) spellings_.insert(std::move(spelling));
  }
  taken_.insert(path);
  const std::size_t slash = path.find('/');
  if (slash != std::string::npos) first_steps_.insert(path.substr(0, slash));
  return true;
}

std::optional<std::string> Folders::PathOf(std::string_view rest) const {
  std::string path;
  std::size_t steps = 0;
  for (std::size_t begin = 0, end = 0; end != std::string_view::npos; begin = end + 1) {
    end = rest.find('/', begin);
    const std::optional<std::string> name = StepName(
        std::string(rest.substr(begin, end == std::string_view::npos ? end : end - begin)));
    if (!name || ++steps > kMostSteps) return std::nullopt;
    path += (path.empty() ? "" : "/") + *name;
  }
  if (path.size() > kLongestPath) return std::nullopt;
  return path;
}

std::optional<Folder> Folders::TakeOwn(const std::string& key, bool tells_key) {
  std::optional<std::string> path = "";
  std::string_view rest;
  if (key != uri_) {
    const std::string below = SubtreeStart(uri_);
    if (!StartsWith(key, below)) return std::nullopt;
    rest = std::string_view(key).substr(below.size());
    const std::size_t end = rest.size() - (EndsWith(rest, "/") ? 1 : 0);
    // With nothing but its slash more, the key has the folder of the URI.
    if (!rest.empty()) path = PathOf(rest.substr(0, end));
  }
  if (!path) return std::nullopt;
  const bool has_key = key == uri_ || (!rest.empty() && *path == rest);
  if ((!has_key && !tells_key) || !Take(*path)) return std::nullopt;
  return Folder{*std::move(path), has_key, false};
}

Folder Folders::TakeSpare() {
  Folder folder;
  folder.is_spare = true;
  do {
    folder.path = "%" + std::to_string(++spares_);
  } while (first_steps_.count(folder.path) != 0 || !Take(folder.path));
  return folder;
}

}  // namespace ostrafel
