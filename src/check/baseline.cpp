// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/baseline.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

#include "base/files.h"
#include "check/report.h"
#include "text/utf8.h"
#include "tool/tool.h"

namespace ostrafel {

namespace {

constexpr std::string_view kHeader =
    "# Findings that ostrafel-check accepts: rule, file and JSON pointer, with tabs between.\n";
constexpr std::string_view kNoPath = "-";

// Rule, path and pointer.
using EntryKey = std::tuple<std::string, std::string, std::string>;

EntryKey KeyOf(const BaselineEntry& entry) { return {entry.rule, entry.path, entry.pointer}; }

BaselineEntry EntryOf(const CheckOptions& options, const Finding& finding) {
  return {RuleOf(finding.rule).name, RelativePath(options, finding.place.path),
          finding.place.pointer.value_or("")};
}

std::string EscapeField(const std::string& field) {
  std::string doubled;
  for (const char c : field) doubled.append(c == '\\' ? 2 : 1, c);
  std::string text = Printable(doubled);
  // Editors take blanks away from the ends of lines.
  if (!text.empty() && text.back() == ' ') text.replace(text.size() - 1, 1, EscapeBytes(" "));
  return text;
}

// Takes an escape away from the front of rest, which begins with a backslash, and appends what it
// stands for. False when it is none.
bool TakeEscape(std::string_view* rest, std::string* field) {
  if (rest->substr(0, 2) == "\\\\") {
    *field += '\\';
    rest->remove_prefix(2);
    return true;
  }
  if (rest->substr(0, 2) != "\\x") return false;
  const std::optional<char> byte = ByteOf(rest->substr(2, 2));
  if (!byte) return false;
  *field += *byte;
  rest->remove_prefix(4);
  return true;
}

// What an escaped field stands for; nothing when an escape in it is wrong.
std::optional<std::string> UnescapeField(std::string_view rest) {
  std::string field;
  while (!rest.empty()) {
    if (rest.front() != '\\') {
      field += rest.front();
      rest.remove_prefix(1);
    } else if (!TakeEscape(&rest, &field)) {
      return std::nullopt;
    }
  }
  return field;
}

// The next of the fields, with tabs between, that are left in rest.
std::string_view TakeField(std::string_view* rest) {
  const std::string_view field = rest->substr(0, rest->find('\t'));
  rest->remove_prefix(std::min(rest->size(), field.size() + 1));
  return field;
}

// Fills in an entry. Returns what is wrong with the line, or an empty string.
std::string ParseEntry(std::string_view line, BaselineEntry* entry) {
  entry->rule = TakeField(&line);
  if (FindRule(entry->rule) == nullptr)
    return "no rule is called \"" + Printable(entry->rule) + "\"";
  const std::string_view path_field = TakeField(&line);
  if (path_field.empty()) return "a tab and a file are missing behind the rule";
  const std::optional<std::string> path = UnescapeField(path_field);
  const std::optional<std::string> pointer = UnescapeField(TakeField(&line));
  if (!path || !pointer) return "a backslash stands before neither another nor x and two digits";
  if (!line.empty()) return "there is a tab behind the pointer";
  if (path_field != kNoPath) entry->path = *path;
  entry->pointer = *pointer;
  return "";
}

bool IsComment(std::string_view line) { return line.empty() || line.front() == '#'; }

// Takes the first line away from rest, and a carriage return from its end.
std::string_view TakeLine(std::string_view* rest) {
  std::string_view line = rest->substr(0, rest->find('\n'));
  rest->remove_prefix(std::min(rest->size(), line.size() + 1));
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

// Says what is wrong with a line of a file.
void PrintLineTrouble(const std::string& path, std::size_t line, const std::string& fault) {
  PrintTrouble(path + ":" + std::to_string(line) + ": " + fault);
}

std::optional<std::vector<BaselineEntry>> ParseEntries(const std::string& path,
                                                       std::string_view rest) {
  std::vector<BaselineEntry> entries;
  for (std::size_t number = 1; !rest.empty(); ++number) {
    const std::string_view line = TakeLine(&rest);
    if (IsComment(line)) continue;
    BaselineEntry entry;
    entry.line = number;
    const std::string fault = ParseEntry(line, &entry);
    if (!fault.empty()) {
      PrintLineTrouble(path, number, fault);
      return std::nullopt;
    }
    entries.push_back(std::move(entry));
  }
  return entries;
}

// Says why something could not be done with a file.
void PrintFileTrouble(const std::string& path) { PrintTrouble(path + ": " + std::strerror(errno)); }

// All bytes of a file, or nothing when they cannot be read.
std::optional<std::string> ReadWhole(const std::string& path) {
  const File file(std::fopen(path.c_str(), "r"));
  if (!file) return std::nullopt;
  std::string text;
  std::string buffer(32768, '\0');
  while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), file.get())) {
    text.append(buffer, 0, size);
  }
  if (std::ferror(file.get()) != 0) return std::nullopt;
  return text;
}

bool WriteWhole(const std::string& path, const std::string& text) {
  File file(std::fopen(path.c_str(), "w"));
  if (!file) return false;
  const bool is_written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() &&
                          std::fflush(file.get()) == 0;
  // What the system has put off may fail now.
  return is_written && std::fclose(file.release()) == 0;
}

}  // namespace

std::string BaselineLine(const BaselineEntry& entry) {
  std::string path = entry.path.empty() ? std::string(kNoPath) : EscapeField(entry.path);
  if (entry.path == kNoPath) path = EscapeBytes(entry.path);
  const std::string line = entry.rule + "\t" + path;
  return entry.pointer.empty() ? line : line + "\t" + EscapeField(entry.pointer);
}

std::optional<std::vector<BaselineEntry>> ReadBaseline(const std::string& path) {
  const std::optional<std::string> text = ReadWhole(path);
  if (!text) {
    PrintFileTrouble(path);
    return std::nullopt;
  }
  return ParseEntries(path, *text);
}

std::vector<BaselineEntry> ApplyBaseline(const CheckOptions& options,
                                         const std::vector<BaselineEntry>& baseline,
                                         Findings* findings) {
  std::set<EntryKey> accepted;
  for (const BaselineEntry& entry : baseline) accepted.insert(KeyOf(entry));
  std::set<EntryKey> used;
  const auto is_accepted = [&](const Finding& finding) {
    const EntryKey key = KeyOf(EntryOf(options, finding));
    if (accepted.count(key) == 0) return false;
    used.insert(key);
    return true;
  };
  findings->erase(std::remove_if(findings->begin(), findings->end(), is_accepted), findings->end());
  std::vector<BaselineEntry> unused;
  std::copy_if(baseline.begin(), baseline.end(), std::back_inserter(unused),
               [&](const BaselineEntry& entry) { return used.count(KeyOf(entry)) == 0; });
  return unused;
}

bool WriteBaseline(const CheckOptions& options, const std::string& path, const Findings& findings) {
  std::set<EntryKey> sorted;
  for (const Finding& finding : findings) sorted.insert(KeyOf(EntryOf(options, finding)));
  std::string text(kHeader);
  for (const auto& [rule, file, pointer] : sorted) {
    text += BaselineLine({rule, file, pointer}) + "\n";
  }
  if (WriteWhole(path, text)) return true;
  PrintFileTrouble(path);
  return false;
}

}  // namespace ostrafel
